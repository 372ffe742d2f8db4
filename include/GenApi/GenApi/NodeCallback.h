/// Being told when a node may have changed.
#ifndef GENAPI_NODECALLBACK_H
#define GENAPI_NODECALLBACK_H

#include "INode.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

/// cbPostInsideLock: called while the map's lock is held. cbPostOutsideLock: called after it was released.
typedef enum _ECallbackType { cbPostInsideLock = 1, cbPostOutsideLock = 2 } ECallbackType;

/// Base of all callbacks. The map calls it in both phases; it acts in its own only.
class GENAPI_DECL CNodeCallback {
 public:
  CNodeCallback(INode* pNode, ECallbackType CallbackType) : m_pNode(pNode), m_CallbackType(CallbackType) {}
  virtual ~CNodeCallback();

  virtual void operator()(ECallbackType CallbackType) const = 0;
  /// Deletes the object.
  virtual void Destroy() = 0;
  INode* GetNode() { return m_pNode; }

 protected:
  INode* m_pNode;
  ECallbackType m_CallbackType;
};

/// Calls anything that can be called with an INode*.
template <class Function>
class Function_NodeCallback : public CNodeCallback {
 public:
  Function_NodeCallback(INode* pNode, const Function& function, ECallbackType CallbackType)
      : CNodeCallback(pNode, CallbackType), m_Function(function) {}

  void operator()(ECallbackType CallbackType) const override {
    if (CallbackType == m_CallbackType) m_Function(m_pNode);
  }
  void Destroy() override { delete this; }

 private:
  mutable Function m_Function;
};

/// Calls a member function of a borrowed object.
template <class Client, class Member>
class Member_NodeCallback : public CNodeCallback {
 public:
  Member_NodeCallback(INode* pNode, Client& client, Member member, ECallbackType CallbackType)
      : CNodeCallback(pNode, CallbackType), m_Client(client), m_Member(member) {}

  void operator()(ECallbackType CallbackType) const override {
    if (CallbackType == m_CallbackType) (m_Client.*m_Member)(m_pNode);
  }
  void Destroy() override { delete this; }

 private:
  Client& m_Client;
  Member m_Member;
};

template <class Function>
CNodeCallback* make_NodeCallback(INode* pNode, Function function, ECallbackType CallbackType) {
  return new Function_NodeCallback<Function>(pNode, function, CallbackType);
}

template <class Client, class Member>
CNodeCallback* make_NodeCallback(INode* pNode, Client& client, Member member, ECallbackType CallbackType) {
  return new Member_NodeCallback<Client, Member>(pNode, client, member, CallbackType);
}

/// Calls function whenever the node may have changed. The handle is for Deregister().
template <class Function>
intptr_t Register(INode* pNode, Function function, ECallbackType CallbackType = cbPostInsideLock) {
  return pNode->RegisterCallback(make_NodeCallback(pNode, function, CallbackType));
}

/// The same for a member function; client must outlive the registration.
template <class Client, class Member>
intptr_t Register(INode* pNode, Client& client, Member member,
                  ECallbackType CallbackType = cbPostInsideLock) {
  return pNode->RegisterCallback(make_NodeCallback(pNode, client, member, CallbackType));
}

/// Ends a registration and destroys its callback. Must come before the map is destroyed. 0 is allowed.
GENAPI_DECL void Deregister(CallbackHandleType hCallback);

}  // namespace GENAPI_NAMESPACE

#endif
