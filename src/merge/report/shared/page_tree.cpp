#include "merge/report/shared/page_tree.h"

namespace corvel {

namespace {

// What is deeper stands beside its parent: nobody has such trees, and pages that go in so far can
// not be read.
constexpr std::size_t kDeepest = 40;
// Of a level as deep as rooms the page shows no more; the JSON has all.
constexpr std::size_t kMostNodes = 5000;

class TreeSection {
 public:
  TreeSection(const std::vector<SpatialNode>& tree, HtmlText& html) : tree_(tree), html_(html) {}

  void Add() {
    html_.Raw("<ul class='tree'>\n");
    AddNode(0, 0);
    html_.Raw("</ul>\n");
    if (left_ != 0) html_.Raw("<p class='soft'>+ ").Count(left_).Raw("</p>\n");
  }

 private:
  void AddNode(std::size_t index, std::size_t depth) {
    const SpatialNode& node = tree_[index];
    if (depth > kDeepest || shown_ >= kMostNodes) {
      ++left_;
      return;
    }
    ++shown_;
    html_.Raw("<li>");
    if (node.children.empty()) {
      AddLabel(node);
    } else {
      html_.Raw(depth < 3 ? "<details open><summary>" : "<details><summary>");
      AddLabel(node);
      html_.Raw("</summary><ul>\n");
      for (const std::size_t child : node.children) AddNode(child, depth + 1);
      html_.Raw("</ul></details>");
    }
    html_.Raw("</li>\n");
  }

  void AddLabel(const SpatialNode& node) {
    for (const std::uint32_t input : node.inputs) {
      html_.Raw("<span class='dot ").Raw(ColourOf(input)).Raw("' title='");
      html_.Whole(input + std::size_t{1}).Raw("'></span>");
    }
    html_.Raw(" ").Name(node.name.empty() ? WideString(u"\u2014") : node.name);
    html_.Raw(" <span class='soft'>").Text(node.className);
    std::size_t products = 0;
    for (const std::size_t count : node.products) products += count;
    if (products != 0) html_.Raw(" \u00b7 ").Count(products);
    html_.Raw("</span>");
  }

  const std::vector<SpatialNode>& tree_;
  HtmlText& html_;
  std::size_t shown_ = 0;
  std::size_t left_ = 0;
};

}  // namespace

void AddNodes(const std::vector<SpatialNode>& tree, HtmlText& html) {
  TreeSection(tree, html).Add();
}

}  // namespace corvel
