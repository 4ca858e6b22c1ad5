// A dialog template as it stands in the library's resources.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

struct TemplateControl {
    int id = 0;
    std::string windowClass;
    std::string text;
    DWORD style = 0;
    DWORD exStyle = 0;
    int x = 0, y = 0, width = 0, height = 0; ///< dialog units
};

/// An extended template, read by the rules of the format.
struct DialogTemplate {
    std::string caption;
    std::string font;
    int points = 0;
    DWORD style = 0;
    int width = 0, height = 0;             ///< dialog units
    std::vector<TemplateControl> controls; ///< in tab order

    static DialogTemplate load(HMODULE module, int number);

    const TemplateControl& at(int id) const;
};
