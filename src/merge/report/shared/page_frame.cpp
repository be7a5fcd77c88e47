#include "merge/report/shared/page_frame.h"

#include "merge/report/shared/page_parts.h"

namespace corvel {

namespace {

constexpr std::string_view kSections = "{{content}}";
constexpr std::size_t kSectionsAt = kPageTemplate.find(kSections);
static_assert(kSectionsAt != std::string_view::npos);

// Each piece of the template up to a name in double braces, then what stands for the name: what is
// put in is not looked at again, whatever names are in it.
template <class Put>
void Fill(std::string_view rest, HtmlText& html, Put put) {
  for (std::size_t begin = rest.find("{{"); begin != std::string_view::npos;
       begin = rest.find("{{")) {
    const std::size_t end = rest.find("}}", begin);
    html.Raw(rest.substr(0, begin));
    put(rest.substr(begin + 2, end - begin - 2));
    rest.remove_prefix(end + 2);
  }
  html.Raw(rest);
}

// About as many as products take up in drawings and JSON.
std::size_t ExpectedBytes(const ModelPlaces* places) {
  constexpr std::size_t kOfProduct = 500;
  constexpr std::size_t kOfFrame = 100'000;
  return kOfFrame + (places == nullptr ? 0 : places->products.size() * kOfProduct);
}

}  // namespace

void BeginPage(const PageHead& head, HtmlText& html) {
  const PageTexts& texts = html.Texts();
  html.Expect(ExpectedBytes(head.places));
  Fill(kPageTemplate.substr(0, kSectionsAt), html, [&](std::string_view name) {
    if (name == "language") {
      html.Raw(texts.Language());
    } else if (name == "follows") {
      html.Raw(head.followsReader ? " data-follows" : "");
    } else if (name == "title") {
      html.Raw(head.title);
    } else if (name == "style") {
      html.Raw(kPageStyle).Raw(head.style);
    } else {
      name.remove_prefix(2);  // "t:"
      html.Text(texts.Of(name));
    }
  });
}

void EndPage(std::string_view json, HtmlText& html) {
  html.Raw("<footer>corvel " CORVEL_VERSION " \u00b7 ").Word("forPrograms").Raw("</footer>\n");
  Fill(kPageTemplate.substr(kSectionsAt + kSections.size()), html, [&](std::string_view name) {
    if (name == "json") {
      html.Raw(json);
    } else if (name == "texts") {
      html.Raw(html.Texts().AllAsJson(html.Named()));
    } else {
      html.Raw(kPageScript);
    }
  });
}

}  // namespace corvel
