#include "tools/images/label.h"

#include <ft2build.h>

#include <algorithm>
#include FT_FREETYPE_H

namespace zavri::tools {
namespace {

constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr int kTextHeight = 16;
constexpr int kBaseline = 20;  // rows below the band's top
constexpr int kMargin = 8;

uint8_t* pixel(Picture& picture, int x, int y) {
  return &picture.rgb[3 * (static_cast<size_t>(y) * static_cast<size_t>(picture.width) +
                           static_cast<size_t>(x))];
}

// The font, opened.
class Font {
 public:
  Font() {
    if (FT_Init_FreeType(&library_) != 0) return;
    if (FT_New_Face(library_, kFont, 0, &face_) != 0) return;
    is_there_ = FT_Set_Pixel_Sizes(face_, 0, kTextHeight) == 0;
  }
  ~Font() { FT_Done_FreeType(library_); }
  Font(const Font&) = delete;
  Font& operator=(const Font&) = delete;

  bool is_there() const { return is_there_; }

  // The next character, as a map of how much of each pixel it covers; null where there is none.
  FT_GlyphSlot glyph(char character) {
    const auto code = static_cast<FT_ULong>(static_cast<unsigned char>(character));
    return FT_Load_Char(face_, code, FT_LOAD_RENDER) == 0 ? face_->glyph : nullptr;
  }

 private:
  FT_Library library_ = nullptr;
  FT_Face face_ = nullptr;
  bool is_there_ = false;
};

// Only what lies within columns up to `right`.
void draw_glyph(Picture& picture, const FT_GlyphSlotRec& glyph, int x, int baseline, int right) {
  const FT_Bitmap& map = glyph.bitmap;
  for (unsigned row = 0; row < map.rows; ++row) {
    const int y = baseline - glyph.bitmap_top + static_cast<int>(row);
    for (unsigned column = 0; column < map.width; ++column) {
      const int at = x + glyph.bitmap_left + static_cast<int>(column);
      if (at < 0 || at >= right || y < 0 || y >= picture.height) continue;
      const int cover = map.buffer[static_cast<int>(row) * map.pitch + static_cast<int>(column)];
      uint8_t* const rgb = pixel(picture, at, y);
      for (int k = 0; k < 3; ++k) {
        rgb[k] = static_cast<uint8_t>(rgb[k] + (255 - rgb[k]) * cover / 255);
      }
    }
  }
}

}  // namespace

bool draw_label(Picture& picture, int x, int y, int width, const std::string& text) {
  const int right = std::min(x + width, picture.width);
  for (int row = y; row < std::min(y + kLabelHeight, picture.height); ++row) {
    std::fill(pixel(picture, x, row), pixel(picture, x, row) + 3 * (right - x), uint8_t{24});
  }
  Font font;
  if (!font.is_there()) return false;
  int at = x + kMargin;
  for (const char character : text) {
    const FT_GlyphSlot glyph = font.glyph(character);
    if (glyph == nullptr) continue;
    draw_glyph(picture, *glyph, at, y + kBaseline, right);
    at += static_cast<int>(glyph->advance.x / 64);
  }
  return true;
}

}  // namespace zavri::tools
