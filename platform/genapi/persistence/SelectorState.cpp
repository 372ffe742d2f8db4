#include "GenApi/SelectorState.h"

#include "Base/GCException.h"
#include "GenApi/INode.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace {

constexpr size_t kOutside = static_cast<size_t>(-1);

}  // namespace

CSelectorState::CSelectorState() : m_Position(kOutside) {}
CSelectorState::CSelectorState(const CSelectorState& other) = default;
CSelectorState& CSelectorState::operator=(const CSelectorState& other) = default;
CSelectorState::~CSelectorState() = default;

bool CSelectorState::SetFirst() {
  m_Position = IsEmpty() ? kOutside : 0;
  return !IsEmpty();
}

bool CSelectorState::SetNext() {
  if (m_Position == kOutside) return false;
  m_Position = m_Position + 1 < m_Names.size() ? m_Position + 1 : kOutside;
  return m_Position != kOutside;
}

gcstring CSelectorState::GetNodeName() const {
  return m_Position < m_Names.size() ? m_Names[m_Position] : gcstring();
}

gcstring CSelectorState::GetNodeValue() const {
  return m_Position < m_Values.size() ? m_Values[m_Position] : gcstring();
}

void CSelectorState::AddSelector(IValue& Selector) {
  AddSelector(Selector.GetNode()->GetName(), Selector.ToString());
}

void CSelectorState::AddSelector(const gcstring& Name, const gcstring& Value) {
  m_Names.push_back(Name);
  m_Values.push_back(Value);
}

bool CSelectorState::IsEmpty() const {
  return m_Names.empty();
}

bool CSelectorState::RestoreState(INodeMap* pNodeMap, gcstring_vector* pErrorList) const {
  if (!pNodeMap) throw INVALID_ARGUMENT_EXCEPTION("The selectors of a null node map cannot be set.");
  bool allGood = true;
  for (size_t i = 0; i < m_Names.size(); ++i) {
    gcstring error;
    try {
      auto* const selector = dynamic_cast<IValue*>(pNodeMap->GetNode(m_Names[i]));
      if (selector) {
        // Writing what is there already would only cost a device access, or fail on a fixed selector.
        if (!IsReadable(selector->GetAccessMode()) || selector->ToString() != m_Values[i])
          selector->FromString(m_Values[i], false);
        continue;
      }
      error = gcstring("Error while setting selector: '") + m_Names[i] + "' not found";
    } catch (const GENICAM_NAMESPACE::GenericException& failure) {
      error = gcstring("Error while setting selector: '") + m_Names[i] + "' to '" + m_Values[i] +
              "': " + failure.what();
    }
    allGood = false;
    if (pErrorList) pErrorList->push_back(error);
  }
  return allGood;
}

}  // namespace GENAPI_NAMESPACE
