#include "tests/shell/dialog_template.h"

#include "tests/support/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

namespace {

class Reader {
public:
    explicit Reader(const unsigned char* bytes)
        : start_(bytes)
        , at_(bytes)
    {
    }

    template <class T>
    T read()
    {
        T value;
        std::memcpy(&value, at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    void align() { at_ += (4 - (at_ - start_) % 4) % 4; }

    /// A name, or a number as "#128".
    std::string nameOrNumber()
    {
        const auto first = read<WORD>();
        if (first == 0) {
            return "";
        }
        if (first == 0xFFFF) {
            return "#" + std::to_string(read<WORD>());
        }
        return utf8(static_cast<wchar_t>(first) + rest());
    }
    std::string text() { return utf8(rest()); }

private:
    std::wstring rest()
    {
        std::wstring text;
        for (auto unit = read<WORD>(); unit != 0; unit = read<WORD>()) {
            text += static_cast<wchar_t>(unit);
        }
        return text;
    }

    const unsigned char* start_;
    const unsigned char* at_;
};

} // namespace

DialogTemplate DialogTemplate::load(HMODULE module, int number)
{
    HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(number), RT_DIALOG);
    if (found == nullptr) {
        throw std::runtime_error("no template " + std::to_string(number));
    }
    Reader reader(static_cast<const unsigned char*>(LockResource(LoadResource(module, found))));
    DialogTemplate dialog;
    EXPECT_EQ(reader.read<WORD>(), 1);
    EXPECT_EQ(reader.read<WORD>(), 0xFFFF);
    reader.read<DWORD>(); // help
    reader.read<DWORD>(); // extended style
    dialog.style = reader.read<DWORD>();
    const auto count = reader.read<WORD>();
    reader.read<DWORD>(); // place
    dialog.width = reader.read<short>();
    dialog.height = reader.read<short>();
    EXPECT_EQ(reader.nameOrNumber(), ""); // menu
    EXPECT_EQ(reader.nameOrNumber(), ""); // class
    dialog.caption = reader.text();
    dialog.points = reader.read<WORD>();
    reader.read<DWORD>(); // weight, italic, character set
    dialog.font = reader.text();
    for (int i = 0; i < count; ++i) {
        reader.align();
        TemplateControl control;
        reader.read<DWORD>(); // help
        control.exStyle = reader.read<DWORD>();
        control.style = reader.read<DWORD>();
        control.x = reader.read<short>();
        control.y = reader.read<short>();
        control.width = reader.read<short>();
        control.height = reader.read<short>();
        control.id = reader.read<int>();
        control.windowClass = reader.nameOrNumber();
        control.text = reader.nameOrNumber();
        EXPECT_EQ(reader.read<WORD>(), 0); // data of its own
        dialog.controls.push_back(control);
    }
    return dialog;
}

const TemplateControl& DialogTemplate::at(int id) const
{
    for (const TemplateControl& control : controls) {
        if (control.id == id) {
            return control;
        }
    }
    throw std::runtime_error("no control " + std::to_string(id));
}
