// Resource ids of the select-by-size dialog, shared by its template and its code.
#pragma once
#define IDD_SIZECLIP 2035
#define IDC_SIZECLIP_WIDTH 1001
#define IDC_SIZECLIP_HEIGHT 1002
#define IDC_SIZECLIP_IMAGE 1003
