// What the window remembers from one start to the next.
#include <gtest/gtest.h>

#include <QPushButton>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/toolkit_support_test.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/main_window.h"
#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt::desktop {
namespace {

struct SessionTest : test::WithToolkit, testing::Test {
  TemporaryFolder folder;
  std::unique_ptr<MainWindow> Start() const {
    auto window = std::make_unique<MainWindow>(folder / "state");
    window->show();
    return window;
  }
  std::filesystem::path Csv(const std::string& name) const {
    WriteBytes(folder / name, "a,b\n1,2\n3,4\n");
    return folder / name;
  }
};

// The link of a file on the start page.
QPushButton* LinkOf(MainWindow& window, const std::filesystem::path& file) {
  for (auto* const button : window.findChildren<QPushButton*>()) {
    if (button->toolTip() == ShownPath(file)) return button;
  }
  return nullptr;
}

TEST_F(SessionTest, FilesAreAmongTheRecentOnesAndThoseThatAreGoneCannotBeChosen) {
  const auto first = Csv("first.csv");
  const auto second = Csv("second.csv");
  {
    auto window = Start();
    EXPECT_TRUE(window->OpenFile(first));
    EXPECT_TRUE(window->OpenFile(second));
    while (window->CurrentDocument() != nullptr) window->CloseDocument();
    window->close();
  }
  std::filesystem::remove(second);
  auto window = Start();
  window->Resume();
  EXPECT_EQ(window->DocumentCount(), 0U);
  QPushButton* const link = LinkOf(*window, first);
  ASSERT_NE(link, nullptr);
  ASSERT_NE(LinkOf(*window, second), nullptr);
  EXPECT_FALSE(LinkOf(*window, second)->isEnabled());
  link->click();
  EXPECT_EQ(window->DocumentCount(), 1U);
}

TEST_F(SessionTest, WhatWasOpenIsOpenAgainWhereTheWindowStood) {
  const auto file = Csv("open.csv");
  const auto gone = Csv("gone.csv");
  {
    auto window = Start();
    window->OpenFile(file);
    window->OpenFile(gone);
    window->resize(777, 555);
    window->close();
  }
  std::filesystem::remove(gone);
  auto window = Start();
  window->Resume();
  EXPECT_EQ(window->DocumentCount(), 1U);
  EXPECT_EQ(window->CurrentDocument()->Title(), "open.csv");
  EXPECT_EQ(window->size(), QSize(777, 555));
}

}  // namespace
}  // namespace brenvolt::desktop
