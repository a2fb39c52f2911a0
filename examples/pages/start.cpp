// A first program: converts texts from several encodings on a pool of two threads.
#include <cstdio>
#include <vector>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_string.hpp"

namespace {

struct Text {
    const char* encoding;
    const char* bytes;
    I18NString read;
};

void readAll(std::vector<Text>& texts) {
    QBLThreadPoolQueued pool(2, 0);
    QBLTaskGroup group(pool);
    for (Text& text : texts)
        group.run([&text] { text.read = I18NString(text.bytes, text.encoding); });
    group.wait();  // rethrows the first error after all tasks have run
}

}  // namespace

int main() {
    if (qblCoreInitialize() != 0) return 1;
    I18NInitialize();
    {
        std::vector<Text> texts;
        texts.push_back({"UTF-8", "caf\xC3\xA9", I18NString()});
        texts.push_back({"KOI8-R", "\xF0\xD2\xC9\xD7\xC5\xD4", I18NString()});
        texts.push_back({"no-such", "?", I18NString()});
        texts.push_back({"Shift_JIS", "\x93\xFA\x96\x7B", I18NString()});
        try {
            readAll(texts);
        } catch (QBLThrowable& error) {
            const char* const what = error.getMessage();  // null if there is no text
            std::printf("%s %ld: %s\n", error.getThrowableName(), error.getErrorCode(),
                        what != nullptr ? what : "no text");
        }
        for (const Text& text : texts)
            std::printf("%-10s %s, %d characters\n", text.encoding, text.read.c_str(),
                        text.read.length());
    }
    I18NTerminate();
    return qblCoreTerminate();
}
