// Lists every feature of every node map, with its kind and its value.
//
//   list_features SERIAL

#include <ZynCamera.h>

#include <iostream>

using namespace ZYNSDK;

// Values that cannot be read now are left out.
static void ShowValue(ZynNode& node) {
  switch (node.Type()) {
    case ZYN_NODE_BOOLEAN: {
      bool value;
      if (node.GetBool(&value) == ZYN_OK) std::cout << (value ? " = true" : " = false");
      return;
    }
    case ZYN_NODE_INTEGER: {
      int value;
      if (node.GetInt(&value) == ZYN_OK) std::cout << " = " << value;
      return;
    }
    case ZYN_NODE_FLOAT: {
      float value;
      if (node.GetFloat(&value) == ZYN_OK) std::cout << " = " << value;
      return;
    }
    case ZYN_NODE_ENUMERATION: {
      ZynString value;
      if (node.GetEnumString(&value, nullptr) == ZYN_OK) std::cout << " = " << value.getStr();
      return;
    }
    default:
      return;
  }
}

static const char* KindOf(ZynNodeType type) {
  switch (type) {
    case ZYN_NODE_BOOLEAN:
      return "boolean";
    case ZYN_NODE_INTEGER:
      return "integer";
    case ZYN_NODE_FLOAT:
      return "float";
    case ZYN_NODE_ENUMERATION:
      return "enumeration";
    case ZYN_NODE_COMMAND:
      return "command";
    default:
      return "other";
  }
}

// `getNodes`: one of the operations that list a node map.
static void ShowFeatures(ZynCamera& camera, const char* title, long (ZynCamera::*getNodes)(ZynNodeArray*)) {
  ZynNodeArray nodes;
  const long status = (camera.*getNodes)(&nodes);
  std::cout << title << ": " << nodes.length() << " features";
  if (status != ZYN_OK) std::cout << ", status " << status;
  std::cout << "\n";
  for (unsigned int i = 0; i < nodes.length(); ++i) {
    ZynNode& node = nodes[static_cast<int>(i)];
    std::cout << "  " << node.Name() << " (" << KindOf(node.Type()) << ")";
    ShowValue(node);
    std::cout << "\n";
  }
}

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: list_features SERIAL\n";
    return 2;
  }
  ZynSDKInit();

  ZynCamera camera;
  long status = DiscoveryCamera(argv[1], &camera);
  if (status == ZYN_OK) status = camera.Open(nullptr);
  if (status == ZYN_OK) {
    ShowFeatures(camera, "Camera", &ZynCamera::GetRemoteNodes);
    ShowFeatures(camera, "Local device", &ZynCamera::GetDevNodes);
    ShowFeatures(camera, "Transport layer", &ZynCamera::GetTLNodes);
    ShowFeatures(camera, "Interface", &ZynCamera::GetIFNodes);
    ShowFeatures(camera, "Data stream", &ZynCamera::GetDSNodes);
    camera.Close();
  }

  ZynSDKUnInit();
  if (status != ZYN_OK) std::cerr << "failed with status " << status << ", see ZynCamera/Status.h\n";
  return status == ZYN_OK ? 0 : 1;
}
