// Writes markup in which nothing from outside can be anything but text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace zebstat {

/// Names and markup that stand in the program itself: only a constant can become one.
class Literal {
  public:
    consteval Literal(const char* text) : text_(text) {}
    std::string_view text() const { return text_; }

  private:
    std::string_view text_;
};

/// An attribute; one without a value is left out.
struct Attribute {
    Literal name;
    std::string value;
};
using Attributes = std::initializer_list<Attribute>;

class Markup {
  public:
    /// An element that is open while this lives.
    class [[nodiscard]] Element {
      public:
        Element(Markup& markup, const Literal& name) : markup_(markup), name_(name) {}
        ~Element();
        Element(const Element&) = delete;
        Element& operator=(const Element&) = delete;

      private:
        Markup& markup_;
        Literal name_;
    };

    Element element(const Literal& name, Attributes attributes = {});
    /// An element with nothing but a text in it.
    void leaf(const Literal& name, std::string_view text, Attributes attributes = {});
    /// An element that has no content.
    void empty(const Literal& name, Attributes attributes);
    /// A text as it is to be read. Control characters become blanks; what is no UTF-8, and what would turn the
    /// direction of the words around it, becomes U+FFFD.
    void text(std::string_view text);
    void raw(const Literal& markup) { page_ += markup.text(); }

    const std::string& page() const { return page_; }

  private:
    void tag(const Literal& name, Attributes attributes, std::string_view end);

    std::string page_;
};

} // namespace zebstat
