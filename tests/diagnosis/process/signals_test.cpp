#include "diagnosis/process/signals.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::CurrentHandler;
using diagnosis::SignalActions;
using diagnosis::SignalsHeldBack;

volatile std::sig_atomic_t caught = 0;

void Catch(int signal)
{
    caught = signal;
}

TEST(SignalActionsTest, HandleUntilTheEndAndGiveBackTheOldHandlers)
{
    SignalActions before;
    before.Handle(SIGUSR1, SIG_IGN);
    {
        SignalActions actions;
        actions.Handle(SIGUSR1, Catch);
        actions.Handle(SIGUSR1, SIG_DFL);
        EXPECT_EQ(CurrentHandler(SIGUSR1), SIG_DFL);
    }
    EXPECT_EQ(CurrentHandler(SIGUSR1), SIG_IGN);
}

TEST(SignalActionsTest, LeaveAHandlerThatTheHostHasSetMeanwhile)
{
    SignalActions before;
    before.Handle(SIGUSR1, SIG_IGN);
    {
        SignalActions actions;
        actions.Handle(SIGUSR1, SIG_DFL);
        std::signal(SIGUSR1, Catch);
    }
    EXPECT_EQ(CurrentHandler(SIGUSR1), &Catch);
    std::signal(SIGUSR1, SIG_IGN);
}

TEST(SignalsHeldBackTest, ComeInAtTheEnd)
{
    SignalActions actions;
    actions.Handle(SIGUSR1, Catch);
    caught = 0;
    {
        const SignalsHeldBack heldBack({SIGUSR1});
        std::raise(SIGUSR1);
        EXPECT_EQ(caught, 0);
    }
    EXPECT_EQ(caught, SIGUSR1);
}

TEST(SignalsHeldBackTest, MayBeLetInBefore)
{
    SignalActions actions;
    actions.Handle(SIGUSR1, Catch);
    caught = 0;
    const SignalsHeldBack heldBack({SIGUSR1});
    std::raise(SIGUSR1);
    heldBack.LetIn();
    EXPECT_EQ(caught, SIGUSR1);
}

} // namespace
