// Resource ids of the folder selection dialog.
#pragma once

#define IDD_SELECTFOLDER 341
#define IDC_SELECTFOLDER_TEXT 1204
#define IDC_SELECTFOLDER_COMBO 1205
#define IDC_SELECTFOLDER_GRIP 1206
#define IDC_SELECTFOLDER_TREE 1018
