#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <stdexcept>
#include <vector>

#include "HandleArrayStorage.h"
#include "Handles.h"
#include "SetWrapperValue.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::InternalOf;

namespace {

std::array<int, 8> objects;

template <class Array>
struct Family;

template <>
struct Family<ZynNodeArray> {
  using Element = ZynNode;
  static ZynNodeArray Join(const ZynNodeArray& a, const ZynNodeArray& b) { return a + b; }
};
template <>
struct Family<ZynCameraArray> {
  using Element = ZynCamera;
  static ZynCameraArray Join(const ZynCameraArray& a, const ZynCameraArray& b) { return a += b; }
};
template <>
struct Family<Zyn3DCameraArray> {
  using Element = Zyn3DCamera;
  static Zyn3DCameraArray Join(const Zyn3DCameraArray& a, const Zyn3DCameraArray& b) { return a + b; }
};

template <class Array>
class HandleArray : public testing::Test {
 public:
  using Element = typename Family<Array>::Element;

  // A handle on the object of that number.
  static Element On(std::size_t object) {
    Element handle;
    SetWrapperValue(&handle, &objects[object], std::is_polymorphic_v<Element>);
    return handle;
  }
  static Array Of(const std::vector<std::size_t>& numbers) {
    Array array;
    for (std::size_t number : numbers) array.push_back(On(number));
    return array;
  }
  static std::vector<void*> Content(const Array& array) {
    std::vector<void*> content;
    for (unsigned int i = 0; i < array.length(); ++i)
      content.push_back(InternalOf(array[static_cast<int>(i)]));
    return content;
  }
  static std::vector<void*> Expected(const std::vector<std::size_t>& numbers) {
    std::vector<void*> content;
    for (std::size_t number : numbers) content.push_back(&objects[number]);
    return content;
  }
};

using Families = testing::Types<ZynNodeArray, ZynCameraArray, Zyn3DCameraArray>;
TYPED_TEST_SUITE(HandleArray, Families);

}  // namespace

TYPED_TEST(HandleArray, StartsEmptyOrWithOneElement) {
  EXPECT_EQ(TypeParam().length(), 0U);
  const TypeParam one(this->On(3));
  EXPECT_EQ(this->Content(one), this->Expected({3}));
}

TYPED_TEST(HandleArray, CopyHasItsOwnStorageAndTheSameElements) {
  TypeParam first = this->Of({0, 1});
  TypeParam copy(first);
  EXPECT_EQ(this->Content(copy), this->Expected({0, 1}));
  EXPECT_TRUE(first != copy);
  first.push_back(this->On(2));
  EXPECT_EQ(copy.length(), 2U);
}

TYPED_TEST(HandleArray, AssigningSharesTheStorage) {
  const TypeParam first = this->Of({0, 1});
  TypeParam second = this->Of({2});
  second = first;
  EXPECT_TRUE(first == second);
  EXPECT_FALSE(first != second);
  second.push_back(this->On(3));
  EXPECT_EQ(this->Content(first), this->Expected({0, 1, 3}));
}

TYPED_TEST(HandleArray, SharedStorageGoesWithItsLastArray) {
  std::optional<TypeParam> first(this->Of({0, 1}));
  TypeParam second;
  second = *first;
  first.reset();
  EXPECT_EQ(this->Content(second), this->Expected({0, 1}));
}

TYPED_TEST(HandleArray, WithoutAStorageMayEnd) {
  using Storage = ZynCameraBaseDataTemplate1<typename Family<TypeParam>::Element>;
  TypeParam array;
  static_cast<Storage*>(InternalOf(array))->Leave();
  SetWrapperValue(&array, nullptr, false);
}

TYPED_TEST(HandleArray, AssigningToItselfKeepsTheElements) {
  TypeParam array = this->Of({0, 1});
  const TypeParam& alias = array;
  array = alias;
  EXPECT_EQ(this->Content(array), this->Expected({0, 1}));
}

TYPED_TEST(HandleArray, EqualElementsInSeparateStoragesAreUnequal) {
  EXPECT_FALSE(this->Of({0, 1}) == this->Of({0, 1}));
  EXPECT_TRUE(this->Of({0, 1}) != this->Of({0, 1}));
}

TYPED_TEST(HandleArray, IndexingGivesTheElementInPlaceOrACopy) {
  TypeParam array = this->Of({0, 1});
  array[1] = this->On(5);
  EXPECT_EQ(this->Content(array), this->Expected({0, 5}));
  const TypeParam& constant = array;
  auto copy = constant[0];
  copy = this->On(6);
  EXPECT_EQ(this->Content(array), this->Expected({0, 5}));
}

TYPED_TEST(HandleArray, JoiningLengthensTheLeftOperand) {
  const TypeParam left = this->Of({0, 1});
  const TypeParam right = this->Of({2, 3, 4});
  const TypeParam joined = Family<TypeParam>::Join(left, right);
  EXPECT_EQ(this->Content(joined), this->Expected({0, 1, 2, 3, 4}));
  EXPECT_EQ(this->Content(left), this->Expected({0, 1, 2, 3, 4}));
  EXPECT_EQ(this->Content(right), this->Expected({2, 3, 4}));
  EXPECT_TRUE(joined != left);
}

TYPED_TEST(HandleArray, JoiningOrAppendingItselfDoublesIt) {
  TypeParam array = this->Of({0, 1, 2});
  Family<TypeParam>::Join(array, array);
  EXPECT_EQ(this->Content(array), this->Expected({0, 1, 2, 0, 1, 2}));
  array.setSize(2);
  array.push_back(array);
  EXPECT_EQ(this->Content(array), this->Expected({0, 1, 0, 1}));
}

TYPED_TEST(HandleArray, PushBackAppendsAnArrayInOrder) {
  TypeParam array = this->Of({0});
  array.push_back(this->Of({1, 2}));
  EXPECT_EQ(this->Content(array), this->Expected({0, 1, 2}));
}

TYPED_TEST(HandleArray, RemoveAtMovesTheLaterElementsDown) {
  TypeParam array = this->Of({0, 1, 2});
  EXPECT_TRUE(array.removeAt(0));
  EXPECT_EQ(this->Content(array), this->Expected({1, 2}));
  EXPECT_FALSE(array.removeAt(2));
  EXPECT_EQ(array.length(), 2U);
}

TYPED_TEST(HandleArray, SelectNeedsATargetAndAValidIndex) {
  const TypeParam array = this->Of({0, 1});
  typename Family<TypeParam>::Element out;
  EXPECT_TRUE(array.select(1, &out));
  EXPECT_EQ(InternalOf(out), &objects[1]);
  EXPECT_FALSE(array.select(2, &out));
  EXPECT_EQ(InternalOf(out), &objects[1]);
  EXPECT_FALSE(array.select(0, nullptr));
}

TYPED_TEST(HandleArray, ReplaceChangesTheElementAndAnswersFalse) {
  TypeParam array = this->Of({0});
  EXPECT_FALSE(array.replace(0, this->On(4)));
  EXPECT_EQ(this->Content(array), this->Expected({4}));
  EXPECT_FALSE(array.replace(1, this->On(5)));
  EXPECT_EQ(this->Content(array), this->Expected({4}));
}

TYPED_TEST(HandleArray, InsertRefusesTheEnd) {
  TypeParam array = this->Of({0, 1});
  EXPECT_TRUE(array.insert(1, this->On(5)));
  EXPECT_EQ(this->Content(array), this->Expected({0, 5, 1}));
  EXPECT_FALSE(array.insert(3, this->On(6)));
  EXPECT_FALSE(TypeParam().insert(0, this->On(6)));
  EXPECT_EQ(array.length(), 3U);
}

TYPED_TEST(HandleArray, AnOwnElementMayBeInsertedAndAppended) {
  TypeParam array = this->Of({0, 1});
  for (int i = 0; i < 20; ++i) array.insert(0, array[static_cast<int>(array.length()) - 1]);
  for (int i = 0; i < 20; ++i) array.push_back(array[0]);
  EXPECT_EQ(InternalOf(array[0]), &objects[1]);
  EXPECT_EQ(InternalOf(array[41]), &objects[1]);
}

TYPED_TEST(HandleArray, SwapExchangesTwoElements) {
  TypeParam array = this->Of({0, 1, 2});
  EXPECT_TRUE(array.swap(0, 2));
  EXPECT_EQ(this->Content(array), this->Expected({2, 1, 0}));
  EXPECT_TRUE(array.swap(1, 1));
  EXPECT_EQ(this->Content(array), this->Expected({2, 1, 0}));
  EXPECT_FALSE(array.swap(0, 3));
  EXPECT_FALSE(array.swap(3, 0));
  EXPECT_EQ(this->Content(array), this->Expected({2, 1, 0}));
}

TYPED_TEST(HandleArray, ClearEmpties) {
  TypeParam array = this->Of({0, 1});
  array.clear();
  EXPECT_EQ(array.length(), 0U);
}

TYPED_TEST(HandleArray, SetSizeAppendsEmptyHandlesOrCuts) {
  TypeParam array;
  array.setSize(3);
  EXPECT_EQ(this->Content(array), (std::vector<void*>{nullptr, nullptr, nullptr}));
  array.replace(0, this->On(1));
  array.setSize(1);
  EXPECT_EQ(this->Content(array), this->Expected({1}));
  array.setSize(0);
  EXPECT_EQ(array.length(), 0U);
}

namespace {

// Notes the numbers of those that end.
struct Noted {
  Noted() = default;
  Noted(int value, std::vector<int>& log) : number(value), ended(&log) {}
  Noted(const Noted& other) = default;
  Noted& operator=(const Noted& other) = default;
  ~Noted() {
    if (ended) ended->push_back(number);
  }
  int number = 0;
  std::vector<int>* ended = nullptr;
};

}  // namespace

TEST(HandleArrayStorage, ClearingEndsTheLastFirstAndKeepsTheMemory) {
  std::vector<int> ended;
  ZYNSDK::ZynCameraBaseDataTemplate1<Noted> storage;
  storage.Elements().reserve(8);
  for (int i = 0; i < 3; ++i) storage.Elements().emplace_back(i, ended);
  ended.clear();
  storage.Clear();
  EXPECT_EQ(ended, (std::vector<int>{2, 1, 0}));
  EXPECT_EQ(storage.Elements().capacity(), 8U);
}

TEST(HandleArrayStorage, ItsEndAndCuttingEndTheLastFirst) {
  std::vector<int> ended;
  {
    ZYNSDK::ZynCameraBaseDataTemplate1<Noted> storage;
    storage.Elements().reserve(8);
    for (int i = 0; i < 5; ++i) storage.Elements().emplace_back(i, ended);
    ended.clear();
    storage.SetSize(3);
    EXPECT_EQ(ended, (std::vector<int>{4, 3}));
  }
  EXPECT_EQ(ended, (std::vector<int>{4, 3, 2, 1, 0}));
}

TEST(HandleArrayStorage, GrowingToASizeReservesItFirst) {
  ZYNSDK::ZynCameraBaseDataTemplate1<int> storage;
  storage.SetSize(100);
  EXPECT_EQ(storage.Count(), 100U);
  EXPECT_EQ(storage.Elements().capacity(), 100U);
}
