#ifndef I18N_CPP_RESOURCES_I18N_XML_ENTITIES_HPP
#define I18N_CPP_RESOURCES_I18N_XML_ENTITIES_HPP

#include <string>

/// Replaces &lt; &gt; &amp; &apos; and &quot; by the characters that they stand for. The result is
/// not searched again, so "&amp;lt;" gives "&lt;". Names in upper case, numeric entities and
/// truncated entities stay as they are.
void i18nReplaceXMLEntities(std::string& utf8);
void i18nReplaceXMLEntities(std::u16string& text);

/// The same replacements as rules of an ICU transliterator.
extern const char kI18NXMLEntityRules[];

#endif
