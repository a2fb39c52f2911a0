/* Base64, tokens and byte order, seen by a C compiler. */
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

int qblCodesFailedFromC(void);
int qblCodesFailedFromC(void) {
    static const unsigned char kBytes[2] = {0xFB, 0xFF};
    unsigned char back[4];
    unsigned size = 9;
    char text[8];
    CHECK(QBLBase64EncodedSize(2) == 5 && QBLBase64URLEncodedSize(2) == 5);
    QBLBase64Encode(kBytes, 2, text);
    CHECK(strcmp(text, "+/8=") == 0);
    CHECK(QBLBase64Decode(text, back, &size) == 0 && size == 2 && memcmp(back, kBytes, 2) == 0);
    QBLBase64URLEncode(kBytes, 2, text);
    CHECK(strcmp(text, "_~8=") == 0);
    CHECK(QBLBase64URLDecode(text, back, &size) == 0 && size == 2 && memcmp(back, kBytes, 2) == 0);
    CHECK(QBLBase64Decode(text, back, &size) == 2 && size == 0);
    CHECK(QBLBase64URLDecode(0, back, 0) == 2);
    QBLBase64Encode(0, 0, text);
    CHECK(text[0] == 0);
    CHECK(qblh2nl(0x01020304U) == 0x04030201U && qbln2hl(0x01020304U) == 0x04030201U);
    CHECK(qblh2ns(0x0102) == 0x0201 && qbln2hs(0x0102) == 0x0201);
    return tokensFailed();
}
