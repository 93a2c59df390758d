#include "zebstat/page_markup.h"

#include "facts/text.h"

#include <algorithm>
#include <array>

namespace zebstat {

namespace {

// The marks, embeddings, overrides and isolates of the Unicode bidirectional algorithm (UAX #9).
constexpr std::array<std::string_view, 12> kDirections{"\u200E", "\u200F", "\u202A", "\u202B", "\u202C", "\u202D",
                                                       "\u202E", "\u2066", "\u2067", "\u2068", "\u2069", "\u061C"};

std::string_view escapeOf(char c) {
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return {};
    }
}

void appendEscaped(std::string& page, std::string_view outside) {
    const std::string text = facts::printable(outside);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view rest = std::string_view(text).substr(i);
        const auto* turn = std::ranges::find_if(kDirections, [&](std::string_view d) { return rest.starts_with(d); });
        if (turn != kDirections.end()) {
            page += "\uFFFD";
            i += turn->size() - 1;
        } else if (const std::string_view escape = escapeOf(text[i]); !escape.empty()) {
            page += escape;
        } else {
            page += text[i];
        }
    }
}

} // namespace

Markup::Element::~Element() {
    markup_.page_ += "</";
    markup_.page_ += name_.text();
    markup_.page_ += '>';
}

void Markup::tag(const Literal& name, Attributes attributes, std::string_view end) {
    page_ += '<';
    page_ += name.text();
    for (const Attribute& attribute : attributes) {
        if (attribute.value.empty())
            continue;
        page_ += ' ';
        page_ += attribute.name.text();
        page_ += "=\"";
        appendEscaped(page_, attribute.value);
        page_ += '"';
    }
    page_ += end;
}

Markup::Element Markup::element(const Literal& name, Attributes attributes) {
    tag(name, attributes, ">");
    return {*this, name};
}

void Markup::leaf(const Literal& name, std::string_view text, Attributes attributes) {
    const Element here = element(name, attributes);
    appendEscaped(page_, text);
}

void Markup::empty(const Literal& name, Attributes attributes) {
    tag(name, attributes, "/>");
}

void Markup::text(std::string_view text) {
    appendEscaped(page_, text);
}

} // namespace zebstat
