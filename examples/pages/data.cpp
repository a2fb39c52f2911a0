// Parses options and dates, builds a record with a checksum, and makes a token of its text.
#include <cstdio>
#include <memory>

#include "QBLCore/Types/QBLByteBufferView.hpp"
#include "QBLCore/Types/QBLTypeCast.hpp"
#include "QBLCore/Types/QBLVariantValues.hpp"
#include "QBLCore/Types/c/QBLDataTypesConversion_c.h"
#include "QBLCore/Utility/QBLBase64.hpp"
#include "QBLCore/Utility/QBLByteOrder.h"
#include "QBLCore/Utility/QBLSquisher.hpp"
#include "QBLCore/Utility/QBLUtCrc32.hpp"
#include "QBLCore/Utility/QBLUtGetOpt.hpp"

int main() {
    char name[] = "data", letters[] = "-vn12", date[] = "--date=2006-03-09", file[] = "log";
    char* words[] = {name, letters, date, file, nullptr};
    QBLUtGetOpt options;
    QBLVariant count;
    const char* longOption = nullptr;
    for (int c; (c = options.getOpt(4, words, "vn:", &longOption)) != -1 || longOption;) {
        if (longOption != nullptr) std::printf("--%s\n", longOption);
        if (c == 'v') std::puts("-v");
        if (c != 'n') continue;
        int number = 0;
        asciiToInt32(options.getOptArg(), &number);
        count.setValue(long{number});
    }
    std::printf("-n %ld, then %s\n", count.get<long>().value_or(0), words[options.getOptInd()]);

    QBLTimestamp2 when;
    for (const char* each : {"2006-03-09 10:05", "2006-02-29 10:05", "9 March"})
        std::printf("%s: %ld\n", each, QBLTypeCast::string2timestamp(&when, each));
    const long minutes = 1530;
    QBLInterval2 interval;
    char text[64];
    QBLTypeCast::int2DTinterval(&interval, &minutes, "MINUTES");
    QBLTypeCast::dtInterval2string(text, &interval);
    std::printf("%ld minutes: %s\n", minutes, text);

    QBLByteBuffer body(QBLByteBuffer::GROW_BY_HALF), record(QBLByteBuffer::GROW_BY_HALF);
    body << "port " << 8080 << ',' << ' ';
    body.printf("%.1f s", 0.5);
    const auto* bytes = reinterpret_cast<const unsigned char*>(body.str());
    const unsigned long checksum = QBLUtCrc32::crc32(0, bytes, body.pcount());
    const uint32_t head[] = {qblh2nl(body.pcount()), qblh2nl(static_cast<uint32_t>(checksum))};
    record.appendChars(reinterpret_cast<const char*>(head), sizeof head) << body;
    const std::string encoded = qblBase64Encode(qblView(record));
    std::printf("%u bytes, checksum %08lx: %s\n", record.pcount(), checksum, encoded.c_str());

    const std::unique_ptr<char[]> token(QBLSquisher::squish(body.str()));
    const std::unique_ptr<char[]> back(QBLSquisher::unSquish(token.get()));
    std::printf("%s is %s\n", token.get(), back.get());
    token[14] = token[14] == 'A' ? 'B' : 'A';
    const std::unique_ptr<char[]> damaged(QBLSquisher::unSquish(token.get()));
    std::puts(damaged == nullptr ? "damage is detected" : "damage is not detected");
}
