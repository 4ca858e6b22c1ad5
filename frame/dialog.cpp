#include "frame/dialog.h"

INT_PTR openDialog(int templateId, HWND owner, DLGPROC procedure, LPARAM parameter)
{
    HMODULE module = GetModuleHandleW(L"corvane");
    // Without the module the program's own resources would be searched, which may hold another dialog under
    // this number: rather no template, and the platform refuses the dialog.
    HRSRC resource = module ? FindResourceW(module, MAKEINTRESOURCEW(templateId), RT_DIALOG) : nullptr;
    HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    return DialogBoxIndirectParamW(nullptr, static_cast<LPCDLGTEMPLATEW>(loaded), owner, procedure,
                                   parameter);
}
