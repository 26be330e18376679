#include "emulator/program/web/picture.h"

#include <cstdint>

#include "emulator/program/web/assets.h"

#define STB_TRUETYPE_IMPLEMENTATION
#define STBTT_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>
#include <stb/stb_truetype.h>

namespace mirvane::emulator {
namespace {

// Pixels: a character's cell, the margin around the paper, and where letters stand in their line.
constexpr int kCell = 10, kLine = 21, kMargin = 24, kBaseline = 16;
constexpr float kHeight = 19;
constexpr int kWidth = static_cast<int>(Paper::kColumns) * kCell + 2 * kMargin;

/// A face of the paper's font.
class Face {
 public:
  explicit Face(std::string_view path) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(findAsset(path)->bytes.data());
    stbtt_InitFont(&info_, bytes, stbtt_GetFontOffsetForIndex(bytes, 0));
    scale_ = stbtt_ScaleForPixelHeight(&info_, kHeight);
    int advance = 0;
    stbtt_GetCodepointHMetrics(&info_, 'M', &advance, nullptr);
    stretch_ = static_cast<float>(kCell) / static_cast<float>(advance);
  }

  /// Draws `c` with its cell's upper left corner at `x`, `y`, `wide` cells wide.
  void draw(std::string& pixels, char16_t c, int x, int y, int wide) const {
    const float across = stretch_ * static_cast<float>(wide);
    int width = 0, height = 0, left = 0, top = 0;
    unsigned char* glyph = stbtt_GetCodepointBitmap(&info_, across, scale_, c, &width, &height, &left, &top);
    const auto lines = static_cast<int>(pixels.size()) / kWidth;
    for (int row = 0; row < height; ++row) {
      for (int column = 0; column < width; ++column) {
        const int px = x + left + column;
        const int py = y + kBaseline + top + row;
        if (px < 0 || px >= kWidth || py < 0 || py >= lines) continue;
        char& pixel = pixels[static_cast<std::size_t>(py) * kWidth + static_cast<std::size_t>(px)];
        const int paper = static_cast<unsigned char>(pixel);
        pixel = static_cast<char>(paper * (255 - glyph[row * width + column]) / 255);
      }
    }
    stbtt_FreeBitmap(glyph, nullptr);
  }

 private:
  stbtt_fontinfo info_{};
  float scale_ = 0, stretch_ = 0;
};

void drawLine(std::string& pixels, const PaperLine& line, int y) {
  static const Face kFaces[] = {Face("/paper.ttf"), Face("/paper-bold.ttf")};
  const Face& face = kFaces[line.size % 2 == 0 ? 1 : 0];
  const std::size_t indent = std::min(line.text.find_first_not_of(u' '), line.text.size());
  const std::size_t step = line.size >= 3 ? 2 : 1;
  for (std::size_t i = indent; i < line.text.size(); i += step) {
    if (line.text[i] == u' ') continue;
    face.draw(pixels, line.text[i], kMargin + static_cast<int>(i) * kCell, y, static_cast<int>(step));
  }
}

}  // namespace

std::string pictureOf(const Document& document) {
  const int height = static_cast<int>(document.lines.size()) * kLine + 2 * kMargin;
  std::string pixels(static_cast<std::size_t>(height) * kWidth, '\xFF');
  int y = kMargin;
  for (const PaperLine& line : document.lines) {
    drawLine(pixels, line, y);
    y += kLine;
  }
  std::string png;
  const auto append = [](void* to, void* bytes, int size) {
    static_cast<std::string*>(to)->append(static_cast<const char*>(bytes), static_cast<std::size_t>(size));
  };
  stbi_write_png_to_func(append, &png, kWidth, height, 1, pixels.data(), kWidth);
  return png;
}

}  // namespace mirvane::emulator
