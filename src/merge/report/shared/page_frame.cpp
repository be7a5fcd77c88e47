#include "merge/report/shared/page_frame.h"

#include "merge/report/shared/page_parts.h"

namespace corvel {

void AddFooter(HtmlText& html) {
  html.Raw("<footer>corvel " CORVEL_VERSION " \u00b7 ").Word("forPrograms").Raw("</footer>\n");
}

// Each piece of the template up to a name in double braces, then what stands for the name: what is
// put in is not looked at again, whatever names are in it.
std::string FramedPage(const PageContent& content, const PageTexts& texts, bool followsReader) {
  std::string page;
  const auto put = [&](std::string_view name) -> std::string& {
    if (name == "language") return page += texts.Language();
    if (name == "follows") return page += followsReader ? " data-follows" : "";
    if (name == "title") return page += content.title;
    if (name == "style") return page.append(kPageStyle).append(content.style);
    if (name == "content") return page += content.main;
    if (name == "json") return page += content.json;
    if (name == "texts") return page += texts.AllAsJson();
    if (name == "script") return page += kPageScript;
    name.remove_prefix(2);  // "t:"
    return page += HtmlText(texts).Text(texts.Of(name)).Take();
  };
  constexpr std::size_t kOwnBytes = 100'000;
  page.reserve(content.main.size() + content.json.size() + kOwnBytes);
  std::string_view rest = kPageTemplate;
  for (std::size_t begin = rest.find("{{"); begin != std::string_view::npos;
       begin = rest.find("{{")) {
    const std::size_t end = rest.find("}}", begin);
    page += rest.substr(0, begin);
    put(rest.substr(begin + 2, end - begin - 2));
    rest.remove_prefix(end + 2);
  }
  return page.append(rest);
}

}  // namespace corvel
