#ifndef I18N_CPP_RESOURCES_I18N_XML_ENTITIES_HPP
#define I18N_CPP_RESOURCES_I18N_XML_ENTITIES_HPP

#include <string>

/// Replaces &lt; &gt; &amp; &apos; and &quot; by their characters, once: what comes out is not
/// looked at again, so "&amp;lt;" gives "&lt;". Names in other case, entities by number and what
/// is cut off stay as they are.
void i18nReplaceXMLEntities(std::string& utf8);
void i18nReplaceXMLEntities(std::u16string& text);

/// The same as rules of an ICU transliterator.
extern const char kI18NXMLEntityRules[];

#endif
