/// The nodes of one device description.
#ifndef GENAPI_INODEMAP_H
#define GENAPI_INODEMAP_H

#include "../Base/GCStringVector.h"
#include "Container.h"
#include "GenApiDll.h"
#include "INode.h"
#include "IPort.h"
#include "IPortStacked.h"
#include "Synch.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

class CNodeWriteConcatenator;

/// Owns its nodes. Every call, here and at the nodes, takes the one recursive lock of the map.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT INodeMap {
  /// Replaces the content of Nodes by all nodes, in the order of the description.
  virtual void GetNodes(NodeList_t & Nodes) const = 0;
  /// Null when there is none. Takes "Name", and "Std::Name" or "Cust::Name" for the node's own name space.
  virtual INode* GetNode(const GENICAM_NAMESPACE::gcstring& Name) const = 0;
  virtual void InvalidateNodes() const = 0;
  /// Connects a device to the Port node of that name; without a name to "Device". The port is borrowed and
  /// must outlive the map or be replaced. Null disconnects. Returns false when there is no such Port node.
  virtual bool Connect(IPort * pPort, const GENICAM_NAMESPACE::gcstring& PortName) const = 0;
  virtual bool Connect(IPort * pPort) const = 0;
  virtual bool Connect(IPortStacked * pPort, const GENICAM_NAMESPACE::gcstring& PortName) = 0;
  virtual bool Connect(IPortStacked * pPort) = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDeviceName() = 0;
  /// Tells the map that ElapsedTime milliseconds passed: nodes whose polling time is over are invalidated.
  virtual void Poll(int64_t ElapsedTime) = 0;
  virtual CLock& GetLock() const = 0;
  virtual uint64_t GetNumNodes() const = 0;
  /// Compiles every formula. Returns false when one is malformed, with one message each in pErrorList.
  virtual bool ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const = 0;
  /// The caller owns the result and ends it with Destroy().
  virtual CNodeWriteConcatenator* NewNodeWriteConcatenator() const = 0;
  /// Writes what was collected, in order, with checks. With featureStreaming the device's commands
  /// DeviceRegistersStreamingStart and DeviceRegistersStreamingEnd, where it has them, are executed before and after.
  /// Returns false when a write failed, with one message each in pErrorList.
  virtual bool ConcatenatedWrite(CNodeWriteConcatenator * pConcatenatedWrite, bool featureStreaming = true,
                                 GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) = 0;
  virtual void SetSuppressCallbackMode(ECallbackSuppressMode mode) = 0;
  virtual ~INodeMap() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
