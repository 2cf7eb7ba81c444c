// Resource ids of the thumbnail pickout dialog, shared by its template and its code.
#pragma once

#define IDD_PICKOUT 1260
#define IDC_PICKOUT_FOLDER 1205
#define IDC_PICKOUT_SMALLEST 1206
#define IDC_PICKOUT_BROWSE 1207
#define IDC_PICKOUT_LARGEST 1209
