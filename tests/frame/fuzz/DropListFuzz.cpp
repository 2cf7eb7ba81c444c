// Registry "drop" values are written by another program: any bytes must be judged safely.
#include "DropList.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    lx::IsWellFormedDropList(data, size);
    return 0;
}
