#include "i18n/cpp/resources/i18n_xml_entities.hpp"

#include <algorithm>
#include <string_view>

const char kI18NXMLEntityRules[] =
    R"(\&lt\u003B>\u003C;\&gt\u003B>\u003E;\&amp\u003B>\u0026;\&apos\u003B>\u0027;\&quot\u003B>\u0022;)";

namespace {

struct Entity {
    std::string_view name;
    char character;
};
constexpr Entity kEntities[] = {
    {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&apos;", '\''}, {"&quot;", '"'}};

template <class Text>
const Entity* entityAt(const Text& text, std::size_t at) {
    for (const Entity& entity : kEntities)
        if (text.size() - at >= entity.name.size() &&
            std::equal(entity.name.begin(), entity.name.end(), text.data() + at))
            return &entity;
    return nullptr;
}

template <class Text>
void replaceEntities(Text& text) {
    using Unit = typename Text::value_type;
    std::size_t in = text.find(Unit{'&'});
    if (in == Text::npos) return;
    // A character is shorter than its entity, so the text can be rewritten in place.
    std::size_t out = in;
    while (in < text.size()) {
        const Entity* entity = text[in] == Unit{'&'} ? entityAt(text, in) : nullptr;
        text[out++] = entity != nullptr ? static_cast<Unit>(entity->character) : text[in];
        in += entity != nullptr ? entity->name.size() : 1;
    }
    text.resize(out);
}

}  // namespace

void i18nReplaceXMLEntities(std::string& utf8) { replaceEntities(utf8); }

void i18nReplaceXMLEntities(std::u16string& text) { replaceEntities(text); }
