#ifndef EXAMPLES_TUTORIAL_FORMAT_HPP
#define EXAMPLES_TUTORIAL_FORMAT_HPP

#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "i18n/cpp/i18n_string.hpp"

/// Counts the texts of one file type. The plug-in for the type "csv" is csv.so.
class [[gnu::visibility("default")]] Format : public QBLObjectFactoryItem {
public:
    using QBLObjectFactoryItem::QBLObjectFactoryItem;

    virtual int countLines(const I18NString& text) = 0;
};

/// The type of a plug-in's entry point, formatRegister: it registers the plug-in's class with the
/// factory and returns the class id.
typedef char* (*FormatRegister)(QBLObjectFactory& factory);

#endif
