#ifdef _WIN32

#include "platform/win32/Handle.h"

#include <gtest/gtest.h>

#include <utility>

namespace zolex {
namespace {

using win32::Handle;

HANDLE makeEvent() {
    HANDLE const event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    EXPECT_NE(event, nullptr);
    return event;
}

bool isOpen(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != 0;
}

TEST(WindowsHandle, ThereIsNothingToCloseInNone) {
    Handle none;
    EXPECT_EQ(none.get(), nullptr);
    EXPECT_TRUE(none.close());
}

TEST(WindowsHandle, IsClosedOnce) {
    HANDLE const event = makeEvent();
    Handle handle(event);
    EXPECT_EQ(handle.get(), event);
    EXPECT_TRUE(handle.close());
    EXPECT_FALSE(isOpen(event));
    EXPECT_EQ(handle.get(), nullptr);
    EXPECT_TRUE(handle.close());
}

TEST(WindowsHandle, ClosingTellsWhenTheSystemCouldNot) {
    HANDLE const event = makeEvent();
    ASSERT_NE(CloseHandle(event), 0);
    Handle handle(event);
    EXPECT_FALSE(handle.close());
    EXPECT_EQ(handle.get(), nullptr) << "it is given up all the same";
    EXPECT_TRUE(handle.close());
}

TEST(WindowsHandle, IsClosedWhenItGoesOrIsReplaced) {
    HANDLE const first = makeEvent();
    HANDLE const second = makeEvent();
    {
        Handle handle(first);
        Handle other(second);
        handle = std::move(other);
        EXPECT_FALSE(isOpen(first));
        EXPECT_EQ(handle.get(), second);
        const Handle moved(std::move(handle));
        EXPECT_TRUE(isOpen(second));
    }
    EXPECT_FALSE(isOpen(second));
}

TEST(WindowsHandle, WhatIsReleasedStaysOpen) {
    HANDLE const event = makeEvent();
    {
        Handle handle(event);
        EXPECT_EQ(handle.release(), event);
        EXPECT_TRUE(handle.close());
    }
    EXPECT_TRUE(isOpen(event));
    CloseHandle(event);
}

} // namespace
} // namespace zolex

#endif
