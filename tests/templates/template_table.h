// The dialog templates as they are. The numbers of templates and controls stand here alone: hosts, help pages and
// accessibility tools know them, so that a number that changes fails here.
#pragma once

#include "tests/support/dialog_look.h"

#include <iosfwd>
#include <string>
#include <vector>

struct TemplateCase {
    int number;
    std::string caption;
    int width, height;                 ///< dialog units
    std::vector<std::string> controls; ///< in words, in their order
    std::vector<int> stops;            ///< of the tab key, a group of radio buttons by its first
    Margins margins{7, 7, 7, 7};       ///< dialog units
    std::vector<int> wideButtons{};    ///< those for which 50 units are not enough
};

extern const std::vector<TemplateCase> kTemplates;

std::ostream& operator<<(std::ostream& out, const TemplateCase& tested);
