#include "QBLCore/Messages/QBLTypedMessage.hpp"

#include <cstdio>
#include <memory>
#include <string>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Resources/QBLResourceBMF.hpp"
#include "QBLCore/Resources/QBLResourceFactory.hpp"

namespace {

const char kNoFile[] = ": no message file found; qblmsgc -w lists the files that are searched";
const char kNoShape[] = ": compiled without --typed; compile it with qblmsgc --typed";
const char kOtherShape[] = ": made from another version of the catalogue than the program";

struct Release {
    void operator()(QBLResource* resource) const { QBLResourceFactory::release(resource); }
};
using ResourcePtr = std::unique_ptr<QBLResource, Release>;

ResourcePtr open(const QBLTypedCatalogue& catalogue, const char* locales) {
    return ResourcePtr(QBLResourceFactory::findAndGet(catalogue.name, locales, 0));
}

/// @return 0 if there is no file, or no shape in the file
unsigned shapeOf(const QBLResource* resource) {
    const auto* const file = dynamic_cast<const QBLResourceBMF*>(resource);
    return file != nullptr ? file->getShape() : 0;
}

std::string inHex(unsigned shape) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%06X", shape);
    return digits;
}

}  // namespace

bool QBLTypedCatalogue::matches(const char* locales) const {
    QBL_ALLOC_TRY
    return shapeOf(open(*this, locales).get()) == shape;
    QBL_ALLOC_CATCH
}

void QBLTypedCatalogue::check(const char* locales) const {
    QBL_ALLOC_TRY
    const ResourcePtr file = open(*this, locales);
    if (file == nullptr) QBL_THROW(QBLIllegalStateError(0, (std::string(name) + kNoFile).c_str()));
    const unsigned found = shapeOf(file.get());
    if (found == shape) return;
    const std::string& path = file->getResourceFileName();
    if (found == 0) QBL_THROW(QBLIllegalStateError(0, (path + kNoShape).c_str()));
    const std::string shapes = " (shape " + inHex(found) + ", not " + inHex(shape) + ")";
    QBL_THROW(QBLIllegalStateError(0, (path + kOtherShape + shapes).c_str()));
    QBL_ALLOC_CATCH
}

QBLTypedMessage::QBLTypedMessage(const QBLTypedCatalogue& catalogue, unsigned long id,
                                 std::initializer_list<QBLTypedArgument> arguments)
    : QBLMessage(catalogue.name, id), m_uShape(catalogue.shape) {
    for (const QBLTypedArgument& argument : arguments) addParameter(argument.parameter());
}

QBLTypedMessage::QBLTypedMessage(const QBLTypedMessage& other) = default;

QBLTypedMessage& QBLTypedMessage::operator=(const QBLTypedMessage& other) = default;

QBLTypedMessage::~QBLTypedMessage() = default;

QBLMessageBase* QBLTypedMessage::clone() const {
    QBL_ALLOC_TRY
    return new QBLTypedMessage(*this);
    QBL_ALLOC_CATCH
}

void QBLTypedMessage::format(const char* language, const char* fallbackLanguage,
                             I18NString& out) const {
    formatIf(m_uShape, language, fallbackLanguage, out);
}
