// Asks the library found at run time whether it is compatible with this program.
#include <cstdio>

#include "QBLCore/Frame/QBLCore.h"

int main() {
    unsigned major = 0, minor = 0;
    qblGetApiVersion(&major, &minor);
    std::printf("the library's interface is %u.%u\n", major, minor);
    for (int wanted = 0; wanted < 2; ++wanted)
        std::printf("built against 1.%d: %s\n", wanted,
                    qblIsCompatibleWith(1, wanted) == 0 ? "served" : "refused");
    std::printf("built against 2.0: %s\n", qblIsCompatibleWith(2, 0) == 0 ? "served" : "refused");
}
