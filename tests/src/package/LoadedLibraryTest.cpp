// A program that is not linked to the SDK and loads it as an application's plug-in would.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <string>

namespace {

// Whether the library itself tells the loader never to unload it. Symbols that compilers mark as unique often
// have the same effect, but not with every compiler.
bool AsksToStay(void* library) {
  link_map* map = nullptr;
  if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0) return false;
  for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag == DT_FLAGS_1) return (entry->d_un.d_val & DF_1_NODELETE) != 0;
  }
  return false;
}

}  // namespace

TEST(LoadedLibrary, StaysAfterDlcloseAndKeepsItsContent) {
  const std::string path = ZYN_LIBRARY;
  ASSERT_EQ(path.substr(path.rfind('/') + 1), "libZynCamera.so.1");
  ASSERT_EQ(dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr);  // nobody else brought it
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr);
  EXPECT_TRUE(AsksToStay(library));
  void* before = dlsym(library, "_ZN6ZYNSDK10ZynSDKInitEv");
  EXPECT_NE(before, nullptr);
  EXPECT_EQ(dlclose(library), 0);
  void* again = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(dlsym(again, "_ZN6ZYNSDK10ZynSDKInitEv"), before);
  dlclose(again);
}
