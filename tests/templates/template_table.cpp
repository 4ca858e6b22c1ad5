#include "tests/templates/template_table.h"

#include "res/version.h"

#include <ostream>

namespace {

using Words = std::vector<std::string>;

Words operator+(Words first, const Words& then)
{
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

const Words kOk = {"default button 1 \"OK\""};
const Words kEnd = kOk + Words{"button 2 \"Cancel\""};

const Words kRule = {
    "label \"Applied to:\"",
    "edit 1012 read-only",
    "label \"Credentials:\"",
    "edit 1001 read-only",
    "group \"Quota limits\"",
    "label \"Object Size:\"",
    "edit 1005 read-only",
    "label \"In Use:\"",
    "edit 1002 read-only",
    "label \"Soft limit:\"",
    "edit 1003",
    "label \"Hard limit:\"",
    "edit 1004",
};

const Words kScript = {
    "label \"Choose script:\"",
    "edit 1012",
    "button 3 \"Browse...\"",
    "group \"Legend\"",
    "label \"Script will receive the following parameters:\n\t1 - directory with soft limit exceeded\n\t2 - "
    "user reaches soft limit\n\t3 - occupied size\"",
};

Words editor(const std::string& list, const std::string& remove, bool edits = true)
{
    return Words{"list " + list + " \"List1\"", "button 1005 \"Add...\""} +
           (edits ? Words{"button 1008 \"Edit...\""} : Words{}) + Words{"button 1006 \"" + remove + '"'} +
           kEnd;
}

constexpr Margins kButtonBesideEdit{7, 6, 7, 7}; // it stands a unit higher

} // namespace

const std::vector<TemplateCase> kTemplates = {
    {148,
     "Quota Settings",
     272,
     232,
     kRule +
         Words{"group \"Advanced\"", "radio 1016 \"No existing files are part of quota\"",
               "radio 1018 \"Owned files are part of quota\"",
               "radio 1015 \"All existing  files are part of quota\"",
               "check 1006 \"Apply the same settings for all group members\"",
               "check 1040 \"Apply the same limit for new group members\"",
               "check 1019 \"Enable hard limit less than object size\""} +
         kEnd,
     {1003, 1004, 1016, 1006, 1040, 1019, 1, 2}},
    {141, "Quota Settings", 272, 128, kRule + kEnd, {1003, 1004, 1, 2}},
    {9,
     "Choose subject",
     338,
     252,
     {"radio 1013 \"Search account\"", "radio 1014 \"Type exact account name\"",
      "check 1006 \"Customize search base\"", "label \"Search base:\"", "edit 1007 disabled",
      "list 1008 \"SidList\"", "label \"User/Group:\"", "edit 1009 disabled",
      "default button 1 \"Search...\"", "button 2 \"Cancel\""},
     {1013, 1006, 1008, 1, 2}},
    // The tree comes last: the first control gets the focus, and a tree selects a node when it does.
    {155, "Choose file...", 235, 230, kEnd + Words{"SysTreeView32 1038 \"\""}, {1, 2, 1038}},
    {151,
     "Select program from list of running processes",
     235,
     200,
     Words{"list 1020 \"ProcList\""} + kEnd,
     {1020, 1, 2}},
    // Its picture stands in the middle, and so it leaves more at its sides.
    {144,
     "About Vantrel",
     229,
     245,
     Words{"picture 1018", "picture 7019", "label \"Vantrel - disk quotas for users, groups and folders\"",
           "label \"" TEXT_OF(Version PRODUCT_VERSION - Vantrel LLC) "\""} +
         kOk,
     {1},
     {20, 7, 21, 7}},
    {142, "Notifications", 343, 175, editor("1015", "Remove"), {1015, 1005, 1008, 1006, 1, 2}},
    {146, "Manage exception files", 340, 175, editor("1011", "Delete"), {1011, 1005, 1008, 1006, 1, 2}},
    {149,
     "Manage Administrative Accounts",
     340,
     175,
     editor("1011", "Delete", false),
     {1011, 1005, 1006, 1, 2}},
    {152, "Manage backup tools", 340, 175, editor("1011", "Delete"), {1011, 1005, 1008, 1006, 1, 2}},
    {156, "Manage blocked extensions", 340, 175, editor("1011", "Delete"), {1011, 1005, 1008, 1006, 1, 2}},
    {147,
     "Exclude file",
     369,
     50,
     Words{"label \"File/Path to exclude:\"", "edit 1012", "button 3 \"Browse...\""} + kEnd,
     {1012, 3, 1, 2},
     kButtonBesideEdit},
    {150,
     "Backup Processes",
     260,
     68,
     Words{"label \"Proces name:\"", "edit 1012", "button 4 \"Browse running...\"",
           "button 3 \"Browse from disk...\""} +
         kEnd,
     {1012, 4, 3, 1, 2},
     {7, 7, 7, 7},
     {4, 3}},
    {157,
     "Blocked extension",
     369,
     72,
     Words{"label \"Path mask:\"", "edit 1012", "label \"Account:\"", "edit 1039 disabled",
           "button 3 \"Browse...\""} +
         kEnd,
     {1012, 3, 1, 2}},
    {153,
     "Notification script and options...",
     324,
     252,
     kScript +
         Words{"group \"Limit for specific user:\"",
               "radio 1022 \"Anyone\"",
               "radio 1024 \"Only user were specified in limit\"",
               "radio 1025 \"All users except defined in limit\"",
               "radio 1023 \"Specific user/group only\"",
               "edit 1026",
               "group \"Impersonate to:\"",
               "label \"User:\"",
               "edit 1028",
               "label \"Password:\"",
               "password 1029",
               "group \"Limit amount of notifications for one limit to\"",
               "radio 1031 \"No limit\"",
               "radio 1032 \"Once per second\"",
               "radio 1033 \"Once per minute\"",
               "radio 1034 \"Once per five minutes\"",
               "radio 1035 \"Once per hour\"",
               "radio 1036 \"Once per day\"",
               "radio 1037 \"Once per week\"",
               "label \"Ignore increments less than\"",
               "edit 1030"} +
         kEnd,
     {1012, 3, 1022, 1026, 1028, 1029, 1031, 1030, 1, 2},
     kButtonBesideEdit},
    // Carried for older hosts, never shown here.
    {140, "Quota Settings", 186, 49, Words{"label \"Limit:\"", "edit 1004"} + kEnd, {1004, 1, 2}},
    {143, "Notification script...", 324, 103, kScript + kEnd, {1012, 3, 1, 2}, kButtonBesideEdit},
    {136,
     "Exclude file",
     267,
     50,
     Words{"label \"File/Path to exclude:\"", "edit 1012"} + kEnd,
     {1012, 1, 2}},
};

std::ostream& operator<<(std::ostream& out, const TemplateCase& tested)
{
    return out << tested.number;
}
