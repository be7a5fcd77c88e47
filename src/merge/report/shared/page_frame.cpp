#include "merge/report/shared/page_frame.h"

#include "merge/report/shared/html_text.h"
#include "merge/report/shared/page_parts.h"

namespace corvel {

// Each piece of the template up to a name in double braces, then what stands for the name: what is
// put in is not looked at again, whatever names are in it.
std::string FramedPage(const PageContent& content, const PageTexts& texts, bool followsReader) {
  const auto valueOf = [&](std::string_view name) -> std::string {
    if (name == "language") return std::string(texts.Language());
    if (name == "follows") return followsReader ? " data-follows" : "";
    if (name == "title") return content.title;
    if (name == "style") return std::string(kPageStyle).append(content.style);
    if (name == "content") return content.main;
    if (name == "json") return content.json;
    if (name == "texts") return texts.AllAsJson();
    if (name == "script") return std::string(kPageScript);
    name.remove_prefix(2);  // "t:"
    return HtmlText(texts).Text(texts.Of(name)).Take();
  };
  std::string page;
  std::string_view rest = kPageTemplate;
  for (std::size_t begin = rest.find("{{"); begin != std::string_view::npos;
       begin = rest.find("{{")) {
    const std::size_t end = rest.find("}}", begin);
    page += rest.substr(0, begin);
    page += valueOf(rest.substr(begin + 2, end - begin - 2));
    rest.remove_prefix(end + 2);
  }
  return page.append(rest);
}

}  // namespace corvel
