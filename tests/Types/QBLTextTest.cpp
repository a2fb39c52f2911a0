#if __has_include(<fmt/ranges.h>)
#include <fmt/ranges.h>  // the formatters of ranges must not compete
#endif
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/Exceptions/QBLThrowableText.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLMessageText.hpp"
#include "QBLCore/Types/QBLTypesText.hpp"
#include "i18n/cpp/i18n_fmt.hpp"
#include "i18n/cpp/i18n_literals.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"

namespace {

struct DiskError : QBLException {
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(DiskError)
};

}  // namespace

TEST(QBLTextTest, StreamsAndFormatsObjectsAsTheirText) {
    const std::string longText(50, 'v');
    QBLByteBuffer buffer;
    QBLVariant number, text, null;
    number.setValue(-7L);
    text.setValue(longText.c_str(), 0);
    null.setValue(nullptr, 0);
    buffer << std::string_view("a\0b", 3);
    DiskError disk(7);
    disk << QBLMessageString("full") << QBLMessageString("!");
    const QBLMessageString message("note");
    const QBLRuntimeError plain(3, "failed"), silent(-4, nullptr);
    const QBLMessageSet& set = disk;
    const I18NPooledString pooled("pool");

    std::ostringstream out;
    out << std::setw(4) << buffer << number << null << text << '|' << disk << set << message
        << std::setw(7) << plain << silent << pooled;
    const std::string tail = "|full !full!note failedQBLRuntimeError -4pool";
    EXPECT_EQ(std::string(" a\0b-7", 6) + longText + tail, out.str());
#ifdef FMT_HEADER_ONLY
    EXPECT_EQ(std::string(" a\0b-7", 6) + longText + tail,
              fmt::format("{:>4}{}{}{}|{}{}{}{:>7}{}{}", buffer, number, null, text, disk, set,
                          message, plain, silent, pooled));
    EXPECT_EQ("[  \u00E9]", fmt::format("[{:>3}]", u"\u00E9"_i18n));
#endif
}
