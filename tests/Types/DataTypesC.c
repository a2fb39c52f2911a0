/* Calls the number conversions from C. */
#include <string.h>

#include "QBLCore/Types/c/QBLDataTypesConversion_c.h"

#define CHECK(condition) \
    if (!(condition)) return __LINE__

/* Returns 0, or the line of the first failed check. */
int dataTypesFailed(void);

int dataTypesFailed(void) {
    char text[32];
    int i = 0;
    long long l = 0;
    float f = 0;
    double d = 0;
    CHECK(asciiToInt32(" -12abc", &i) == 1 && i == -12);
    CHECK(asciiToInt64("9223372036854775808", &l) == 0 && l == 0x7FFFFFFFFFFFFFFFLL);
    CHECK(asciiToFloat32("2.5e-1", &f) == 1 && f == 0.25F);
    CHECK(asciiToFloat64("+.5x", &d) == 1 && d == 0.5);
    CHECK(int32ToAscii(text, -2147483647 - 1) == 11 && strcmp(text, "-2147483648") == 0);
    CHECK(int64ToAscii(text, 1234567890123LL) == 13 && strcmp(text, "1234567890123") == 0);
    CHECK(float32ToAscii(text, 0.1F) == 3 && strcmp(text, "0.1") == 0);
    CHECK(float64ToAscii(text, -1e-7) == 6 && strcmp(text, "-1e-07") == 0);
    return 0;
}
