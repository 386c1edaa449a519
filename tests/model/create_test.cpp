#include <gtest/gtest.h>

#include "model/errors.hpp"
#include "model/memory.hpp"
#include "support/failing.hpp"
#include "zelk/exception.hpp"

namespace {

msgblk message;
sigblk signal;
symblk node;

/// Whether `create` raises when the heap is exhausted; else it must give null and report nothing.
template <typename Create>
bool raises(Create create) {
  zelk_clear_error_text();
  const FailingCalloc failing(0);
  bool is_raised = false;
  try {
    EXPECT_EQ(create(), nullptr);
  } catch (const ZelkException&) {
    is_raised = true;
  }
  EXPECT_STREQ(zelk_get_error_text(), is_raised ? "not enough memory\n" : "");
  return is_raised;
}

/// @param again  whether it is reported also while an error of the read stands
template <typename Create>
void expect_raising(bool again, Create create) {
  bool& is_reported = zelk::error_state().read_error_reported;
  is_reported = false;  // by reads of other tests
  EXPECT_TRUE(raises(create));
  EXPECT_EQ(is_reported, !again);
  is_reported = true;
  EXPECT_EQ(raises(create), again);
  is_reported = false;
}

TEST(Creation, ReportsAnExhaustedHeap) {
  const auto expect_once = [](auto... create) { (expect_raising(false, create), ...); };
  const auto expect_always = [](auto... create) { (expect_raising(true, create), ...); };
  expect_once(
      zelk_create_msgblk, zelk_create_sigblk, zelk_create_btlblk, zelk_create_symbol,
      zelk_create_value, zelk_create_muxor_value_range, zelk_create_evblk,
      [] { return zelk_create_rx(&node); }, [] { return zelk_create_tx(&node); },
      [] { return zelk_add_multiplexor_value_range(&signal, &signal, 1, 1); });
  expect_always(
      zelk_create_attr_def, zelk_create_category, zelk_create_valtable, zelk_create_sigtype,
      [] { return zelk_create_siggroup(&message); }, [] { return zelk_create_siglist(&signal); },
      [] { return zelk::copy_text("text"); });
  EXPECT_FALSE(raises([] { return zelk_malloc(1); }));
}

}  // namespace
