// Numbers of templates and controls, shared by the code and the resource script. Hosts, help pages and
// accessibility tools know them: they never change.
#ifndef RES_RESOURCE_H
#define RES_RESOURCE_H

// Quota Settings, adding and editing a rule, and an older template that is carried and never shown
#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

#define IDD_QUOTA_SETTINGS_ADD 148
#define IDD_QUOTA_SETTINGS_EDIT 141
#define IDD_QUOTA_LIMIT 140

#define IDC_QUOTA_CREDENTIALS 1001
#define IDC_QUOTA_IN_USE 1002
#define IDC_QUOTA_SOFT_LIMIT 1003
#define IDC_QUOTA_HARD_LIMIT 1004
#define IDC_QUOTA_OBJECT_SIZE 1005
#define IDC_QUOTA_GROUP_MEMBERS 1006
#define IDC_QUOTA_APPLIED_TO 1012
#define IDC_QUOTA_ALL_FILES 1015
#define IDC_QUOTA_NO_FILES 1016
#define IDC_QUOTA_OWNED_FILES 1018
#define IDC_QUOTA_ALLOW_BELOW 1019
#define IDC_QUOTA_NEW_MEMBERS 1040

// Choose file
#define IDD_CHOOSE_FILE 155
#define IDC_CHOOSE_FILE_TREE 1038

// The running processes
#define IDD_PROCESS_CHOOSER 151
#define IDC_PROCESS_LIST 1020

// About box and its pictures
#define IDD_ABOUT 144
#define IDC_ABOUT_LOGO 1018
#define IDC_ABOUT_PICTURE 7019
#define IDB_ABOUT_LOGO 146
#define IDB_ABOUT_PICTURE 147

// Choose subject, and the images of its list
#define IDD_CHOOSER 9
#define IDC_CHOOSER_CUSTOM_BASE 1006
#define IDC_CHOOSER_BASE 1007
#define IDC_CHOOSER_LIST 1008
#define IDC_CHOOSER_NAME 1009
#define IDC_CHOOSER_SEARCH 1013
#define IDC_CHOOSER_TYPE 1014
#define IDI_COMPUTER 136
#define IDI_DOMAIN 137
#define IDI_GROUP 138
#define IDI_USER 139

#endif
