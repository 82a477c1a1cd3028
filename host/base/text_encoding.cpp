#include "host/base/text_encoding.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "host/base/utf8.h"

namespace brenvolt {
namespace {

// A conversion from one encoding to UTF-8.
class Conversion {
 public:
  explicit Conversion(const std::string& encoding) : handle_(iconv_open("UTF-8", encoding.c_str())) {}
  ~Conversion() {
    if (IsOpen()) iconv_close(handle_);
  }
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  bool IsOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Appends the text of the bytes to `out`. Returns how many bytes are text: all of them unless one is none.
  std::size_t Append(std::string_view bytes, std::string& out) {
    std::array<char, std::size_t{1} << 16> buffer;
    char* in = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    while (left > 0) {
      char* to = buffer.data();
      std::size_t room = buffer.size();
      const std::size_t result = iconv(handle_, &in, &left, &to, &room);
      out.append(buffer.data(), buffer.size() - room);
      if (result == static_cast<std::size_t>(-1) && errno != E2BIG) break;
    }
    return bytes.size() - left;
  }

 private:
  iconv_t handle_;
};

}  // namespace

bool IsEncodingName(const std::string& name) {
  // iconv takes an empty name for that of the locale, and "//" begins what to do with characters that are lost.
  return !name.empty() && name.find('/') == std::string::npos && Conversion(name).IsOpen();
}

std::string ToUtf8(std::string_view bytes, const std::string& encoding) {
  Conversion conversion(encoding);
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  const std::size_t read = conversion.Append(bytes, text);
  if (read < bytes.size())
    throw EncodingFault{read, 1 + static_cast<std::size_t>(std::ranges::count(text, '\n'))};
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return text;
}

}  // namespace brenvolt
