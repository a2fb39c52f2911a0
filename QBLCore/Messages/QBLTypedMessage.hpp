#ifndef QBLCORE_MESSAGES_QBLTYPEDMESSAGE_HPP
#define QBLCORE_MESSAGES_QBLTYPEDMESSAGE_HPP

#include <initializer_list>

#include "QBLCore/Messages/QBLMessage.hpp"
#include "QBLCore/Messages/QBLTypedArguments.hpp"

/// A catalogue that a header of `qblmsgc --typed` describes. The shape is a checksum of the
/// identifiers, of their names, and of the arguments' types. Each message file of the catalogue
/// holds the same checksum, whatever its language.
///
/// Threads: any thread may call any operation.
struct QBLTypedCatalogue {
    const char* name;  ///< base name, without language and extension
    unsigned shape;    ///< 1 to 0xFFFFFF

    /// Finds and opens the message file, as QBLMessage::format() does, and compares its shape.
    /// @param locales  null means QBLCatalogueSettings::getDefaultLocales()
    /// @return false if there is no such file, or if it has another shape or none
    /// @throws QBLOutOfMemoryError
    QBL_API bool matches(const char* locales = nullptr) const;
    /// Does the same, and says what is wrong. Call it when the program starts.
    /// @throws QBLIllegalStateError, with the name of the file, if the file does not match;
    ///     QBLOutOfMemoryError
    QBL_API void check(const char* locales = nullptr) const;
};

/// A message whose arguments the compiler has checked. The functions that `qblmsgc --typed`
/// generates return it:
///
///     show(diskmsgs::diskLow("/var", 1234567));
///
/// format() shows a text only if the message file has the shape that the header describes. A file
/// of another shape, or without one, counts as missing: the message then shows its XML form, and
/// QBLTypedCatalogue::check() tells why. A throwable or a message set keeps this check. A copy in a
/// variable of type QBLMessage does not: use `auto`.
///
/// Threads: as with QBLMessageBase.
class QBL_API QBLTypedMessage : public QBLMessage {
public:
    QBLTypedMessage(const QBLTypedCatalogue& catalogue, unsigned long id,
                    std::initializer_list<QBLTypedArgument> arguments);
    QBLTypedMessage(const QBLTypedMessage& other);
    QBLTypedMessage& operator=(const QBLTypedMessage& other);
    ~QBLTypedMessage() override;

    QBLMessageBase* clone() const override;
    void format(const char* language, const char* fallbackLanguage, I18NString& out) const override;

    /// Returns the shape of the catalogue that the message was made for.
    unsigned getShape() const { return m_uShape; }

private:
    unsigned m_uShape;
};

#endif
