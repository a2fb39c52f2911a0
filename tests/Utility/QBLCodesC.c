/* Calls the functions for Base64, tokens and byte order from C. */
#include <string.h>

#include "QBLCore/Utility/QBLBase64.h"
#include "QBLCore/Utility/QBLByteOrder.h"
#include "QBLCore/Utility/QBLSquisher.h"

#define CHECK(condition) \
    if (!(condition)) return __LINE__

static int tokensFailed(void) {
    char token[64], text[8] = "unset";
    struct QBLsqu_state state;
    unsigned size = 0;
    CHECK(QBLsqu_compressed_size(3000) == 3028 && QBLsqu_compressed_size(0xFFFFFFFF) == 0);
    CHECK(QBLsqu_squished_size(4) == 29 && QBLsqu_squished_size(0xFFFFFFFF) == 0);
    CHECK(QBLsqu_squish("text", token) == 0 && strlen(token) < QBLsqu_squished_size(4));
    CHECK(QBLsqu_unsquish1(token, &state, &size) == 0 && size == 5 && state.textLength == 4);
    CHECK(QBLsqu_unsquish2(&state, text) == 0 && strcmp(text, "text") == 0 && state.buffer == 0);
    CHECK(QBLsqu_unsquish2(&state, text) == -2 && QBLsqu_unsquish2(0, text) == -2);
    CHECK(QBLsqu_squish(0, token) == -2 && token[0] == 0 && QBLsqu_squish("", 0) == -2);
    CHECK(QBLsqu_unsquish1(0, &state, 0) == 1 && QBLsqu_unsquish1(token, 0, 0) == -2);
    return 0;
}

static const struct {
    const char *bytes, *standard, *url;
    unsigned size;
} kRows[] = {{"a", "YQ==", "YQ==", 1},
             {"ab", "YWI=", "YWI=", 2},
             {"abc", "YWJj", "YWJj", 3},
             {"\xFB\xFF", "+/8=", "_~8=", 2}};

int qblCodesFailedFromC(void);
int qblCodesFailedFromC(void) {
    unsigned char back[50];
    unsigned i, size = 9;
    char text[70] = "kept";
    QBLBase64Encode("a", 1, 0);
    CHECK(QBLBase64Decode("YQ==", 0, &size) == 2 && size == 0 && QBLBase64URLDecode("", 0, 0) == 2);
    for (i = 0; i < sizeof kRows / sizeof kRows[0]; ++i) {
        QBLBase64Encode(kRows[i].bytes, kRows[i].size, text);
        CHECK(strcmp(text, kRows[i].standard) == 0);
        CHECK(QBLBase64Decode(text, back, &size) == 0 && size == kRows[i].size);
        CHECK(memcmp(back, kRows[i].bytes, size) == 0);
        QBLBase64URLEncode(kRows[i].bytes, kRows[i].size, text);
        CHECK(strcmp(text, kRows[i].url) == 0);
        CHECK(QBLBase64URLDecode(text, back, &size) == 0 && size == kRows[i].size);
        CHECK(memcmp(back, kRows[i].bytes, size) == 0);
    }
    CHECK(QBLBase64Decode(text, back, &size) == 2 && size == 0 && QBLBase64Decode(0, back, 0) == 2);
    QBLBase64URLEncode(0, 5, text);
    CHECK(text[0] == 0);
    CHECK(qblh2nl(0x01020304U) == 0x04030201U && qbln2hl(0x01020304U) == 0x04030201U);
    CHECK(qblh2ns(0x0102) == 0x0201 && qbln2hs(0x0102) == 0x0201);
    return tokensFailed();
}
