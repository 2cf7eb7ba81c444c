// Resource ids shared by the .rc files and the code. String ids are the numbers the tools
// pass around (section and value names, messages, titles); they need no names here.
#pragma once
#define LX_MANIFEST_ID 2  // ISOLATIONAWARE_MANIFEST_RESOURCE_ID: a DLL's own manifest
