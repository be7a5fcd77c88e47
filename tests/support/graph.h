// Objects without a schema: a class is a name, a model is what the test links together.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/entity.h"
#include "core/root_interfaces.h"
#include "core/text.h"

namespace corvel::test {

// Refers to whatever it is told to refer to.
class GraphNode : public virtual IFC::IfcEntity {
 public:
  GraphNode() = default;
  GraphNode(const GraphNode&) = default;
  GraphNode& operator=(const GraphNode&) = default;
  virtual ~GraphNode() = default;
  bool isComplexType() const override { return true; }
  void collectChildren(IFC::ChildQueue& queue) const override {
    for (const IFC::ChildRef& child : children) queue.Append(child.entity, child.canLose);
  }
  void read(Parser& /*parser*/) override {}
  void write(StepWriter& /*writer*/) const override {}
  bool hasNoLiveMembers() const override { return false; }

  void RefersTo(IFC::IfcEntity* entity) { children.push_back({entity, true}); }

  std::vector<IFC::ChildRef> children;
};

// With a GUID and a name, whose texts are the test's.
class GraphRoot : public GraphNode, public virtual IFC::VirtualIfcRoot {
 public:
  void setRootAttributes(const char* globalId, IFC::IfcEntity* /*ownerHistory*/,
                         corvel::ModelText newName) override {
    if (globalId != nullptr) guid = globalId;
    if (!newName.IsNull()) name = newName;
  }
  const char* getGlobalId() const override { return guid; }
  void setGlobalId(const char* globalId) override { guid = globalId; }
  corvel::ModelText getName() const override { return name; }

  const char* guid = "";
  corvel::ModelText name = u"";
};

class GraphAssigns : public GraphRoot, public virtual IFC::VIfcRelAssigns {};

// A text as a template argument.
template <std::size_t size>
struct ClassName {
  consteval ClassName(const char16_t (&name)[size]) {  // NOLINT(google-explicit-constructor)
    for (std::size_t i = 0; i < size; ++i) text[i] = name[i];
  }
  char16_t text[size] = {};
};

// The class of a name: Of<u"IfcWall">, Of<u"IfcPoint", GraphNode>.
template <ClassName kName, class Base = GraphRoot>
class Of final : public Base {
 public:
  const char16_t* getClassName() const override { return kName.text; }
};

// Owns objects and their texts.
class Graph {
 public:
  template <class Class>
  Class& Add() {
    auto object = std::make_unique<Class>();
    Class& added = *object;
    objects_.push_back(std::move(object));
    return added;
  }
  template <class Class>
  Class& AddRoot(std::string_view guid, WideView name = u"") {
    Class& root = Add<Class>();
    root.guid = Keep(guid);
    root.name = Keep(name);
    return root;
  }
  const char* Keep(std::string_view text) { return narrow_.emplace_back(text).c_str(); }
  const char16_t* Keep(WideView text) { return wide_.emplace_back(text).c_str(); }

 private:
  std::deque<std::unique_ptr<GraphNode>> objects_;
  std::deque<std::string> narrow_;
  std::deque<WideString> wide_;
};

}  // namespace corvel::test
