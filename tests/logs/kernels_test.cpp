#include "logs/columns/kernels.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "base/signal_bits.hpp"
#include "codec/frames.hpp"

namespace {

using namespace zelk::logs;

constexpr std::size_t kRows = 37;  // some for each form of a loop, and some left over

/// Words and values begin where no wide instruction would have them begin.
void expect_same_bits(Kernel plain, Kernel wide, const Conversion& conversion, Random& random) {
  std::array<std::uint64_t, kRows + 1> words;
  for (std::uint64_t& word : words) word = random.bits();
  std::array<std::array<std::uint64_t, kRows + 1>, 2> values{};
  const std::size_t count = random.between(0, kRows);
  plain(conversion, &words[1], count, reinterpret_cast<unsigned char*>(&values[0][1]));
  wide(conversion, &words[1], count, reinterpret_cast<unsigned char*>(&values[1][1]));
  EXPECT_EQ(values[0], values[1]);
}

// Columns are made by the wide form where there is one: here the other one is compared with it.
TEST(Kernels, GiveTheSameBitsInBothForms) {
  if (!zelk::has_avx2()) GTEST_SKIP() << "this processor runs the plain form only";
  Random random;
  std::array<char, 3> text = {'o', 'n', 0};
  val one = {1, text.data(), nullptr};
  val minus_two = {-2, text.data(), &one};
  for (unsigned i = 0; i < 2000; ++i) {
    sigblk signal = make_signal(0, i % 64 + 1, (i / 64 % 2) * kSigned);
    signal.values = &minus_two;
    signal.value_type = random.one_in(3) ? random.between(1, 2) : 0;
    const DescriptionTexts texts(signal, {});
    Conversion conversion{
        {}, 0.1 * random.between(1, 99) - 5.05, 0.3 * random.between(0, 9), &texts};
    conversion.field = {low_bits(~std::uint64_t{0}, signal.length),
                        signal.flags == kSigned ? std::uint64_t{1} << (signal.length - 1) : 0,
                        signal.value_type == 2 ? 0 : random.between(0, 64U - signal.length)};
    expect_same_bits(physical_kernel(signal, conversion.field, false),
                     physical_kernel(signal, conversion.field, true), conversion, random);
    const auto type = static_cast<ZelkColumnType>(i % 11);
    expect_same_bits(raw_kernel(type, false), raw_kernel(type, true), conversion, random);
    ASSERT_FALSE(HasFailure()) << i;
  }
}

}  // namespace
