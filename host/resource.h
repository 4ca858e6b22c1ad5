// Numbers of the sample host's resources. The resource script reads this file as well.
#pragma once

#define IDI_PANEL 1
#define IDD_PANEL 100
#define IDM_PANEL 101
#define IDA_PANEL 102

#define IDC_FOLDER_LABEL 1000
#define IDC_FOLDER_EDIT 1001
#define IDC_FOLDER_ADD 1002
#define IDC_FOLDER_BROWSE 1003
#define IDC_FOLDERS_LABEL 1004
#define IDC_FOLDERS 1005
#define IDC_FOLDER_REMOVE 1006
#define IDC_FOLDER_HINT 1007
#define IDC_RULES_LABEL 1008
#define IDC_RULES 1009

// The menu entries of the same commands have the same numbers.
#define IDC_ADD_FOR_ANYONE 1010
#define IDC_ADD_FOR_ACCOUNT 1011
#define IDC_EDIT 1012
#define IDC_DROP 1013
#define IDC_RELOAD 1014
#define IDC_APPLY 1015
#define IDC_STATUS 1016
#define IDC_OWNERS_FIRST 1017

#define IDM_EDIT_SOFT_LIMIT 2000
#define IDM_SELECT_ALL 2001
#define IDM_EXIT 2002
#define IDM_ADD_OWNERS_FIRST 2003

#define IDM_NOTIFICATIONS 2010
#define IDM_EXCLUDES 2011
#define IDM_EXCLUDE_EXTS 2012
#define IDM_MGR_ACCOUNTS 2013
#define IDM_BACKUP_TOOLS 2014
#define IDM_CHOOSE_FILE 2020
#define IDM_CHOOSE_PROCESS 2021
#define IDM_BACKUP_PROCESS 2022
#define IDM_HELP_CONTENTS 2030
#define IDM_ABOUT 2031
