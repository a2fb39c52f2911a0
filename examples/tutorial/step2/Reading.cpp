#include "Reading.hpp"

#include "Errors.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "i18n/cpp/i18n_converter.hpp"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_text_stream.hpp"

namespace {

std::string readFile(const std::string& path) {
    QBLFmFile file;
    std::string bytes;
    char block[4096];
    long size = -1;
    if (file.open(path.c_str(), QBLFmFile::existing, 1))
        while ((size = file.read(block, sizeof block)) > 0)
            bytes.append(block, static_cast<std::size_t>(size));
    if (size < 0) fail(message(TALLY_UNREADABLE) << path.c_str() << file.getLastErrorMessage());
    return bytes;
}

/// A converter that refuses malformed text.
I18NConverter strictConverter(const std::string& path, const std::string& encoding) try {
    I18NConverter converter(encoding.c_str());
    converter.setBuiltInUnconvertibleInputSequenceCallback(I18N_STOP);
    return converter;
} catch (I18NRuntimeError&) {
    fail(message(TALLY_UNKNOWN_ENCODING) << path.c_str() << encoding.c_str());
}

}  // namespace

I18NString readText(const std::string& path, const std::string& encoding) {
    const std::string bytes = readFile(path);
    const I18NConverter converter = strictConverter(path, encoding);
    I18NTextStream stream(&converter, nullptr);
    try {
        stream.put(bytes.data(), bytes.size());
        stream.finish();
    } catch (I18NRuntimeError&) {
        const int line = static_cast<int>(stream.getLine());
        fail(message(TALLY_MALFORMED) << path.c_str() << line << encoding.c_str());
    }
    return I18NString(bytes.data(), converter, static_cast<int>(bytes.size()));
}
