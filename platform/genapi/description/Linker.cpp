#include "description/Linker.h"

#include <algorithm>
#include <string>
#include <utility>

#include "Base/GCException.h"

namespace zyn::genapi {
namespace {

using namespace GENAPI_NAMESPACE;

class Linker {
 public:
  explicit Linker(Description& description) : out_(description) {}

  void Run() {
    IndexNames();
    Resolve();
    CheckCyclesAndVisibility();
    MarkFeatures();
    CollectAdjacency();
    CollectSpecialNodes();
  }

 private:
  NodeId Count() const { return static_cast<NodeId>(out_.nodes.size()); }

  void IndexNames() {
    for (NodeId id = 0; id < Count(); ++id) {
      const NameId name = out_.nodes[id].nameId;
      const NodeId other = out_.names.Node(name);
      if (other != kNoNode)
        throw RUNTIME_EXCEPTION("Found a duplicate node: %s and %s", out_.Label(other).c_str(),
                                out_.Label(id).c_str());
      out_.names.SetNode(name, id);
    }
  }

  void Resolve() {
    for (NodeId id = 0; id < Count(); ++id) {
      const std::uint32_t first = out_.nodes[id].firstProperty;
      for (std::uint32_t i = first; i < first + out_.nodes[id].propertyCount; ++i)
        ResolveLink(id, out_.properties[i]);
    }
  }

  void ResolveLink(NodeId id, Property& link) {
    const bool isInner = link.element == Element::enumEntry || link.element == Element::intSwissKnife;
    if (!IsLink(link.element) || isInner) return;
    const NodeId target = out_.names.Node(static_cast<NameId>(link.number));
    link.number = target;
    if (target == kNoNode && !MayDangle(link.element))
      throw RUNTIME_EXCEPTION("Element %s at line %u of node %s: dangling node reference '%s'",
                              XmlName(link.element), link.line, out_.Label(id).c_str(),
                              std::string(out_.Text(link.text)).c_str());
    if (target == kNoNode)
      out_.Tolerate([&] {
        return "Element " + std::string(XmlName(link.element)) + " at line " + std::to_string(link.line) +
               " of node " + out_.Label(id) + ": there is no node '" + Brief(out_.Text(link.text)) + "'";
      });
    if (link.element == Element::pEnumEntry) return AdoptEntry(id, target, link);
    if (link.element == Element::pPort && out_.nodes[target].kind != NodeKind::port)
      throw RUNTIME_EXCEPTION("Element pPort at line %u of node %s: %s is no Port", link.line,
                              out_.Label(id).c_str(), out_.Label(target).c_str());
  }

  // Older descriptions keep entries outside of their enumeration. From here on they are like all others.
  void AdoptEntry(NodeId enumeration, NodeId entry, Property& link) {
    if (out_.nodes[entry].kind != NodeKind::enumEntry)
      throw RUNTIME_EXCEPTION("Element pEnumEntry at line %u of node %s: %s is no EnumEntry", link.line,
                              out_.Label(enumeration).c_str(), out_.Label(entry).c_str());
    if (out_.facts.schemaVersion.Minor > 0)
      out_.Tolerate([&] {
        return "Element pEnumEntry at line " + std::to_string(link.line) + " of node " +
               out_.Label(enumeration) + " belongs to schema 1.0";
      });
    link.element = Element::enumEntry;
    link.attribute = out_.nodes[entry].name;
    out_.nodes[entry].owner = enumeration;
  }

  static bool LeadsToNode(const Property& property) {
    return IsLink(property.element) && property.Target() != kNoNode;
  }

  // Depth first with a stack of its own: the length of a chain of links must not matter.
  void CheckCyclesAndVisibility() {
    enum class State : std::uint8_t { untouched, open, done };
    struct Step {
      NodeId node;
      std::uint32_t nextProperty;
    };
    std::vector<State> states(out_.nodes.size(), State::untouched);
    std::vector<Step> path;
    for (NodeId start = 0; start < Count(); ++start) {
      if (states[start] != State::untouched) continue;
      path.push_back({start, 0});
      states[start] = State::open;
      while (!path.empty()) {
        Step& step = path.back();
        if (step.nextProperty == out_.nodes[step.node].propertyCount) {
          FinishNode(step.node);
          states[step.node] = State::done;
          path.pop_back();
          continue;
        }
        const Property& property = out_.Properties(step.node)[step.nextProperty++];
        if (!IsReadingLink(property.element) || !LeadsToNode(property)) continue;
        const NodeId target = property.Target();
        if (states[target] == State::open) {
          std::vector<NodeId> cycle;
          cycle.reserve(path.size());
          for (const Step& entry : path) cycle.push_back(entry.node);
          ThrowCycle(cycle, target, property);
        }
        if (states[target] != State::untouched) continue;
        states[target] = State::open;
        path.push_back({target, 0});
      }
    }
  }

  [[noreturn]] void ThrowCycle(const std::vector<NodeId>& path, NodeId target,
                               const Property& property) const {
    std::string names;
    const auto first = std::find(path.begin(), path.end(), target);
    for (auto node = first; node != path.end(); ++node) {
      if (names.size() > 1000) {
        names += "... -> ";
        break;
      }
      names.append(out_.Name(*node)).append(" -> ");
    }
    names.append(out_.Name(target));
    throw RUNTIME_EXCEPTION("Element %s at line %u of node %s: read cycle detected : %s",
                            XmlName(property.element), property.line, out_.Label(path.back()).c_str(),
                            names.c_str());
  }

  // Everything the node reads is finished already.
  void FinishNode(NodeId id) {
    NodeRecord& record = out_.nodes[id];
    const Property* const own = out_.Find(id, Element::visibility);
    record.visibility = own ? static_cast<EVisibility>(own->number) : Beginner;
    if (record.kind != NodeKind::category) return;
    // A category shows as soon as one of its features does, whatever it says itself; an empty one never
    // shows.
    record.visibility = Invisible;
    for (const Property& property : out_.Properties(id))
      if (property.element == Element::pFeature && property.Target() != kNoNode)
        record.visibility = std::min(record.visibility, out_.nodes[property.Target()].visibility);
  }

  void MarkFeatures() {
    const NodeId root = out_.FindNode("Root");
    if (root == kNoNode) return;
    std::vector<NodeId> waiting{root};
    out_.nodes[root].isFeature = true;
    while (!waiting.empty()) {
      const NodeId id = waiting.back();
      waiting.pop_back();
      if (out_.nodes[id].kind != NodeKind::category) continue;
      for (const Property& property : out_.Properties(id)) {
        if (property.element != Element::pFeature || property.Target() == kNoNode) continue;
        if (std::exchange(out_.nodes[property.Target()].isFeature, true)) continue;
        waiting.push_back(property.Target());
      }
    }
  }

  template <class Step>
  void EachLink(const Step& step) const {
    for (NodeId id = 0; id < Count(); ++id)
      for (const Property& property : out_.Properties(id))
        if (LeadsToNode(property)) step(id, property.element, property.Target());
  }

  void CollectAdjacency() {
    out_.mentionedBy.Build(Count(), [this](const auto& add) {
      EachLink([&add](NodeId id, Element, NodeId target) { add(target, id); });
    });
    out_.selectedBy.Build(Count(), [this](const auto& add) {
      EachLink([&add](NodeId id, Element element, NodeId target) {
        if (element == Element::pSelected) add(target, id);
      });
    });
    out_.affected.Build(Count(), [this](const auto& add) {
      EachLink([&add](NodeId id, Element element, NodeId target) {
        if (element == Element::pSelected) {
          add(id, target);
        } else if (IsReadingLink(element) || element == Element::pInvalidator ||
                   element == Element::enumEntry) {
          add(target, id);
        }
      });
    });
  }

  void CollectSpecialNodes() {
    for (NodeId id = 0; id < Count(); ++id) {
      if (out_.nodes[id].kind == NodeKind::port) out_.ports.push_back(id);
      const Property* const polling = out_.Find(id, Element::pollingTime);
      if (polling && polling->number >= 0) out_.polled.push_back(id);
    }
  }

  Description& out_;
};

}  // namespace

void Link(Description& description) {
  Linker(description).Run();
}

}  // namespace zyn::genapi
