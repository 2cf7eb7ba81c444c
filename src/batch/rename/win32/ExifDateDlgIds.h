// Resource ids of the rename dialog, shared by its template and its code.
#pragma once

#define IDD_EXIFDATE 1240
#define IDC_EXIFDATE_ITEM1 1161
#define IDC_EXIFDATE_ITEM2 1162
#define IDC_EXIFDATE_ITEM3 1163
#define IDC_EXIFDATE_RESET 1102
#define IDC_EXIFDATE_LIST 1026
