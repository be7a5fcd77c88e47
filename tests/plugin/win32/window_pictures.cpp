// Takes pictures of the options window: window_pictures FOLDER
//
// FOLDER gets both forms in every language: full_en.bmp, short_en.bmp. On a screen that has not 96
// dots per inch it gets the full ones and the English short one, and their names end with the dots:
// full_en_192.bmp. For each of them a line of text goes to standard output: its name, then left,
// top, width and height of the client area and of each visible control within the picture. Needs a
// screen.
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "plugin/win32/options_form.h"
#include "plugin/win32/shown_window.h"

namespace corvel::plugin {

namespace {

// What the screen shows where the window is, as rows of blue, green, red and an unused byte.
struct Picture {
  BITMAPINFOHEADER header{};
  std::vector<std::uint8_t> pixels;
};

Picture PictureOf(HWND window) {
  RECT place{};
  ::GetWindowRect(window, &place);
  Picture picture;
  picture.header.biSize = sizeof picture.header;
  picture.header.biWidth = place.right - place.left;
  picture.header.biHeight = place.bottom - place.top;
  picture.header.biPlanes = 1;
  picture.header.biBitCount = 32;
  picture.header.biCompression = BI_RGB;
  const auto width = static_cast<std::size_t>(picture.header.biWidth);
  const auto height = static_cast<std::size_t>(picture.header.biHeight);
  picture.pixels.resize(4 * width * height);
  const HDC screen = ::GetDC(nullptr);
  const HDC memory = ::CreateCompatibleDC(screen);
  const HBITMAP bitmap =
      ::CreateCompatibleBitmap(screen, picture.header.biWidth, picture.header.biHeight);
  const HGDIOBJ before = ::SelectObject(memory, bitmap);
  ::BitBlt(memory, 0, 0, picture.header.biWidth, picture.header.biHeight, screen, place.left,
           place.top, SRCCOPY);
  ::SelectObject(memory, before);
  BITMAPINFO info{};
  info.bmiHeader = picture.header;
  ::GetDIBits(memory, bitmap, 0, static_cast<UINT>(height), picture.pixels.data(), &info,
              DIB_RGB_COLORS);
  ::DeleteObject(bitmap);
  ::DeleteDC(memory);
  ::ReleaseDC(nullptr, screen);
  return picture;
}

bool Save(const Picture& picture, const std::filesystem::path& path) {
  BITMAPFILEHEADER file{};
  file.bfType = 0x4D42;
  file.bfOffBits = sizeof file + sizeof picture.header;
  file.bfSize = file.bfOffBits + static_cast<DWORD>(picture.pixels.size());
  std::ofstream stream(path, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(&file), sizeof file);
  stream.write(reinterpret_cast<const char*>(&picture.header), sizeof picture.header);
  stream.write(reinterpret_cast<const char*>(picture.pixels.data()),
               static_cast<std::streamsize>(picture.pixels.size()));
  return static_cast<bool>(stream.flush());
}

void PrintPlaces(const std::string& name, const ShownWindow& shown) {
  RECT window{};
  ::GetWindowRect(shown.Handle(), &window);
  RECT client{};
  ::GetClientRect(shown.Handle(), &client);
  ::MapWindowPoints(shown.Handle(), nullptr, reinterpret_cast<POINT*>(&client), 2);
  std::vector<RECT> places{client};
  for (const HWND child : shown.Children()) {
    if (::IsWindowVisible(child) == 0) continue;
    places.emplace_back();
    ::GetWindowRect(child, &places.back());
  }
  std::printf("%s", name.c_str());
  for (const RECT& place : places) {
    std::printf(" %ld %ld %ld %ld", place.left - window.left, place.top - window.top,
                place.right - place.left, place.bottom - place.top);
  }
  std::printf("\n");
}

constexpr int kUsualDpi = 96;

bool TakePicture(const std::string& language, bool shortForm, const std::filesystem::path& folder) {
  std::string name = (shortForm ? "short_" : "full_") + language;
  if (DpiOf(nullptr) != kUsualDpi) name += "_" + std::to_string(DpiOf(nullptr));
  OptionsWindow options(TextsOf(language));
  options.position = {40, 40};
  bool saved = false;
  ShowAndDo(options, shortForm, [&](const ShownWindow& shown) {
    shown.Click(kUnits);
    // Buttons fade from one look to the next.
    ::Sleep(500);
    shown.Run([&] {
      ::RedrawWindow(shown.Handle(), nullptr, nullptr,
                     RDW_ERASE | RDW_FRAME | RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
      ::GdiFlush();
    });
    ::Sleep(300);
    shown.Run([&] { saved = Save(PictureOf(shown.Handle()), folder / (name + ".bmp")); });
    PrintPlaces(name, shown);
  });
  return saved;
}

bool TakePictures(const std::filesystem::path& folder) {
  bool saved = true;
  for (const std::string language : {"en", "pl", "de", "fr", "es"}) {
    saved = TakePicture(language, false, folder) && saved;
    if (DpiOf(nullptr) != kUsualDpi && language != "en") continue;
    saved = TakePicture(language, true, folder) && saved;
  }
  return saved;
}

}  // namespace

}  // namespace corvel::plugin

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("window_pictures FOLDER\n", stderr);
    return 2;
  }
  const std::filesystem::path folder = arguments[1];
  std::filesystem::create_directories(folder);
  // Or the system would scale what it shows.
  ::SetProcessDPIAware();
  return corvel::plugin::TakePictures(folder) ? 0 : 1;
}
