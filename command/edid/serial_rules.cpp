#include "command/edid/serial_rules.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace {

typedef std::uint32_t TNumber;

std::string Format(const char* format, TNumber number) {
  char text[16];
  std::snprintf(text, sizeof text, format, static_cast<unsigned int>(number));
  return text;
}

// How makers combine number and text. Each function returns an empty text where its rule does not apply.

/// Acer: the number in hex, between the eighth and the ninth character of the text.
std::string WeaveNumberIntoText(TNumber number, const std::string& text) {
  constexpr std::size_t place = 8;
  if (text.size() <= place) return std::string();
  return text.substr(0, place) + Format("%08x", number) + text.substr(place);
}

/// Samsung: the number holds the first four characters, the first one in its highest byte; the text holds the rest.
std::string PutFourCharactersBeforeText(TNumber number, const std::string& text) {
  std::string characters;
  for (const unsigned int shift : {24U, 16U, 8U, 0U}) characters += static_cast<char>(number >> shift & 0xFFU);
  const bool isText = std::all_of(characters.begin(), characters.end(), [](unsigned char character) {
    return std::isdigit(character) != 0 || std::isupper(character) != 0;
  });
  return isText ? characters + text : std::string();
}

constexpr TNumber kBenqLetters = 0x5445;  // "ET": the first letter in the lowest byte

/// BenQ: the number holds the two letters with which every serial number begins.
std::string PutLettersBeforeText(TNumber number, const std::string& text) {
  return number == kBenqLetters ? "ET" + text : std::string();
}

/// LG: the last five characters of the printed number. The first two count thousands in base 34, without I and O.
std::string WriteFiveCharacters(TNumber number, const std::string&) {
  constexpr char digits[] = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ";
  constexpr TNumber base = std::size(digits) - 1;
  const TNumber thousands = number / 1000;
  if (thousands >= base * base) return std::string();
  return std::string{digits[thousands / base], digits[thousands % base]} + Format("%03u", number % 1000);
}

/// Philips: the number in six digits, unless the text ends with them, as most do.
std::string WriteSixDigits(TNumber number, const std::string& text) {
  std::string digits = Format("%06u", number);
  const bool isInText = text.size() >= digits.size() && text.substr(text.size() - digits.size()) == digits;
  return isInText ? std::string() : digits;
}

enum class EText { kAny, kPresent, kMissing };
enum class EUse { kSerial, kAlternative };

/// A list of product codes; an empty list means all.
struct TModels {
  const unsigned int* begin = nullptr;
  const unsigned int* end = nullptr;

  bool Have(unsigned int productCode) const { return begin == end || std::find(begin, end, productCode) != end; }
};

template <std::size_t count>
constexpr TModels ListModels(const unsigned int (&productCodes)[count]) {
  return {productCodes, productCodes + count};
}

// The models whose printed serial number follows the rule; on these makers' other models the result is an alternative.
constexpr unsigned int kAcerModels[] = {0x0019, 0x001A, 0x0020, 0x0024, 0x0026, 0x0076, 0x00A3, 0x00C7, 0x0133,
                                        0x02D4, 0x0319, 0x032D, 0x0330, 0x0335, 0x0337, 0x033A, 0x0353, 0x042E,
                                        0x0468, 0x047B, 0x0480, 0x0512, 0x056B, 0x0771, 0x2311, 0x56AD, 0xAD72};
constexpr unsigned int kSamsungModels[] = {0x0694, 0x0835, 0x09C6, 0x0BC9, 0x0CA5};

/// A rule for some or all models of a maker.
struct TRule {
  std::string_view maker;
  TModels models;
  EText text;
  EUse use;
  std::string (*make)(TNumber number, const std::string& text);
};

// The first rule that applies counts.
constexpr TRule kRules[] = {
    {"ACR", ListModels(kAcerModels), EText::kPresent, EUse::kSerial, WeaveNumberIntoText},
    {"ACR", {}, EText::kPresent, EUse::kAlternative, WeaveNumberIntoText},
    {"BNQ", {}, EText::kPresent, EUse::kSerial, PutLettersBeforeText},
    {"GSM", {}, EText::kAny, EUse::kAlternative, WriteFiveCharacters},
    {"PHL", {}, EText::kPresent, EUse::kAlternative, WriteSixDigits},
    {"PHL", {}, EText::kMissing, EUse::kSerial, WriteSixDigits},
    {"SAM", ListModels(kSamsungModels), EText::kPresent, EUse::kSerial, PutFourCharactersBeforeText},
    {"SAM", {}, EText::kPresent, EUse::kAlternative, PutFourCharactersBeforeText},
};

bool IsFor(const TRule& rule, const std::string& maker, unsigned int productCode, bool hasText) {
  if (rule.text != EText::kAny && (rule.text == EText::kPresent) != hasText) return false;
  return maker == rule.maker && rule.models.Have(productCode);
}

/// Removes the unprintable bytes with which some makers pad the text.
std::string RemoveUnprintableEnd(std::string text) {
  const auto isPrintable = [](char character) { return character > ' ' && character <= '~'; };
  text.erase(std::find_if(text.rbegin(), text.rend(), isPrintable).base(), text.end());
  return text;
}

/// The serial number without any rule of the maker.
std::optional<TSerial> FindPlainSerial(std::optional<TNumber> number, const std::string& text) {
  if (!text.empty()) return TSerial{text, ESerialSource::kText, ""};
  if (number) return TSerial{std::to_string(*number), ESerialSource::kNumber, ""};
  return std::nullopt;
}

}  // namespace

const char* GetName(ESerialSource source) {
  constexpr const char* names[] = {"rule", "text", "number"};
  return names[static_cast<std::size_t>(source)];
}

std::optional<TSerial> FindSerial(const std::string& maker, unsigned int productCode, std::optional<TNumber> number,
                                  const std::string& text) {
  if (number && IsFillerSerial(std::to_string(*number))) number.reset();
  std::string known = RemoveUnprintableEnd(text);
  if (IsFillerSerial(known)) known.clear();
  // Every BenQ has these letters, so they are no serial number without a text.
  if (maker == "BNQ" && known.empty() && number == kBenqLetters) number.reset();
  std::optional<TSerial> plain = FindPlainSerial(number, known);
  if (!number) return plain;
  for (const TRule& rule : kRules) {
    const std::string made =
        IsFor(rule, maker, productCode, !known.empty()) ? rule.make(*number, known) : std::string();
    if (made.empty()) continue;
    if (rule.use == EUse::kSerial) return TSerial{made, ESerialSource::kRule, plain->serial};
    plain->alternative = made;
    return plain;
  }
  return plain;
}

bool IsFillerSerial(const std::string& serial) {
  constexpr const char* fillers[] = {"", "0", "1", "01010101", "16843009", "1234567890123"};
  const std::size_t begin = serial.find_first_not_of(' ');
  if (begin == std::string::npos) return true;
  const std::string text = serial.substr(begin, serial.find_last_not_of(' ') + 1 - begin);
  const auto isFirst = [&](char character) { return character == text.front(); };
  const bool isOneDigit = text.size() > 1 && std::isdigit(static_cast<unsigned char>(text.front())) != 0 &&
                          std::all_of(text.begin(), text.end(), isFirst);
  return isOneDigit || std::find(std::begin(fillers), std::end(fillers), text) != std::end(fillers);
}
