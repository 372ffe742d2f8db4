#ifndef ZYN_DATA_COLOR_ARRAY_H
#define ZYN_DATA_COLOR_ARRAY_H

#include "CRef.h"
#include "RecycledVector.h"
#include "ZynCamera/ZynColorArray.h"

namespace ZYNSDK {

/// The colors behind ZynColorArray, which documents the operations: width * height points of 1, 3 or 4
/// bytes. Always holds exactly as many bytes as its shape says. Neither width nor height is negative.
class ColorArray : public CRef {
 public:
  ColorArray();
  ColorArray(const void* data, int size, int channel);
  ColorArray(const void* data, int width, int height, int channel);
  ~ColorArray() override;

  int Width() const { return width_; }
  int Height() const { return height_; }
  int Channel() const { return channel_; }
  int Length() const { return width_ * height_; }
  unsigned char* Data() const { return bytes_.Size() == 0 ? nullptr : bytes_.Data(); }

  bool Create(const void* data, int width, int height, int channel);
  void SetSize(int width, int height, int channel);
  void SetValue(const void* data, int channel, int startRow, int endRow);
  void SetColor(int value);
  void Append(const ColorArray& other);
  void Replace(int index, const ZynColor& color);
  void Select(int index, ZynColor* out) const;
  void Clear();
  /// A new array made of this one's bytes, for the caller to own.
  ColorArray* Clone() const;

 private:
  bool HasPoint(int index) const { return index >= 0 && index < Length(); }
  unsigned char* Point(int index) const;
  void Take(RecycledVector<unsigned char> bytes, int width, int height, int channel);
  void SetShape(int width, int height, int channel);

  RecycledVector<unsigned char> bytes_;
  int width_ = 0;
  int height_ = 0;
  int channel_ = 1;
};

}  // namespace ZYNSDK

#endif
