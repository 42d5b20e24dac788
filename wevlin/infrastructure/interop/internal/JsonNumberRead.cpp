#include "wevlin/infrastructure/interop/internal/JsonNumberRead.h"

#include "wevlin/infrastructure/interop/internal/JsonText.h"
#include "wevlin/infrastructure/interop/internal/JsonTextParts.h"

namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal {

bool ReadJsonIntView(std::string_view text, int& out) {
  text = TrimJsonTextView(text);
  int value = 0;
  const int fast = FastInt(text, value);
  if (fast == 0 || (fast < 0 && !StreamExtract(text, value))) Fail(kNotAnInteger);
  out = value;
  return true;
}

bool ReadJsonInt(const std::string& text, int& out) { return ReadJsonIntView(text, out); }

bool ReadJsonFloatView(std::string_view text, float& out) {
  text = TrimJsonTextView(text);
  float value = 0.0F;
  if (!FastFloating(text, 30, value) && !StreamExtract(text, value)) Fail(kNotAFloat);
  out = value;
  return true;
}

bool ReadJsonFloat(const std::string& text, float& out) { return ReadJsonFloatView(text, out); }

bool ReadJsonDoubleView(std::string_view text, double& out) {
  text = TrimJsonTextView(text);
  double value = 0.0;
  if (!FastFloating(text, 250, value) && !StreamExtract(text, value)) Fail(kNotADouble);
  out = value;
  return true;
}

bool ReadJsonDouble(const std::string& text, double& out) { return ReadJsonDoubleView(text, out); }

}  // namespace Com::Velmora::TAVO::Wevlin::Infrastructure::Interop::internal
