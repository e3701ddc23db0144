#include <gtest/gtest.h>

#include "include/cef_client.h"

namespace {

int alive = 0;

class Thing : public CefClient, public CefLoadHandler {
public:
    Thing() { ++alive; }
    ~Thing() override { --alive; }
    CefRefPtr<CefLoadHandler> GetLoadHandler() override { return this; }

private:
    IMPLEMENT_REFCOUNTING(Thing);
};

TEST(CefRefPtr, CopiesAndMoves_CountOneObject) {
    {
        CefRefPtr<Thing> a = new Thing;
        EXPECT_TRUE(a->HasOneRef());
        CefRefPtr<CefClient> b = a;
        CefRefPtr<CefLoadHandler> c = a->GetLoadHandler();
        EXPECT_EQ(b, a);
        EXPECT_EQ(c, a);
        EXPECT_FALSE(a->HasOneRef());
        b = nullptr;
        c.reset();
        EXPECT_TRUE(a->HasOneRef());
        CefRefPtr<CefClient> moved = std::move(a);
        EXPECT_FALSE(a);
        EXPECT_TRUE(moved->HasOneRef());
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(CefRefPtr, SelfAssignment_KeepsTheObject) {
    CefRefPtr<Thing> a = new Thing;
    a = *&a;
    a = a.get();
    EXPECT_TRUE(a->HasOneRef());
    a = new Thing;
    EXPECT_EQ(alive, 1) << "the old object went when the new one came";
    a = nullptr;
    EXPECT_EQ(alive, 0);
}

TEST(CefRefPtr, ReleaseAndSwap_HandOverTheReference) {
    CefRefPtr<Thing> a = new Thing, b;
    a.swap(b);
    EXPECT_EQ(a, nullptr);
    Thing* raw = b.release();
    EXPECT_FALSE(b);
    EXPECT_TRUE(raw->HasOneRef());
    EXPECT_TRUE(raw->HasAtLeastOneRef());
    EXPECT_TRUE(raw->Release());
    EXPECT_EQ(alive, 0);
}

}  // namespace
