// SPDX-License-Identifier: MIT
#include "platform/run_loop.h"
#include "platform/undo_manager.h"

#include <gtest/gtest.h>

namespace plyra {
namespace {

// A value whose setter registers its own inverse, the way model edits do.
struct Counter {
    UndoManager* undo = nullptr;
    int value = 0;

    void set(int v, const char* name = "Set Value")
    {
        const int old = value;
        undo->registerUndo(this, [this, old, name] { set(old, name); });
        undo->setActionName(name);
        value = v;
    }
};

class UndoManagerTest : public ::testing::Test {
protected:
    void TearDown() override { RunLoop::main().runUntilIdle(); }
    UndoManager undo;
};

TEST_F(UndoManagerTest, GroupsOnePassIntoOneStepAndRedoesIt)
{
    Counter c{&undo};
    c.set(1);
    c.set(2);
    c.set(3);
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoStepCount(), 1);
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo Set Value");

    undo.undo();
    EXPECT_EQ(c.value, 0);
    EXPECT_EQ(undo.undoStepCount(), 0);
    EXPECT_EQ(undo.redoStepCount(), 1);
    EXPECT_EQ(undo.redoMenuItemTitle(), "Redo Set Value");
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo");

    undo.redo();
    EXPECT_EQ(c.value, 3);
    EXPECT_EQ(undo.undoStepCount(), 1);
    EXPECT_EQ(undo.redoStepCount(), 0);

    undo.undo();
    EXPECT_EQ(c.value, 0);
}

TEST_F(UndoManagerTest, SeparatePassesAreSeparateStepsAndANewChangeClearsRedo)
{
    Counter c{&undo};
    c.set(1, "First");
    RunLoop::main().endPass();
    c.set(2, "Second");
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoStepCount(), 2);
    EXPECT_EQ(undo.undoActionName(), "Second");

    undo.undo();
    EXPECT_EQ(c.value, 1);
    EXPECT_EQ(undo.undoActionName(), "First");
    EXPECT_TRUE(undo.canRedo());

    c.set(5, "Third");
    EXPECT_FALSE(undo.canRedo());
    RunLoop::main().endPass();
    undo.undo();
    EXPECT_EQ(c.value, 1);
    undo.undo();
    EXPECT_EQ(c.value, 0);
    EXPECT_FALSE(undo.canUndo());
}

TEST_F(UndoManagerTest, UndoWithinThePassClosesTheOpenGroupFirst)
{
    Counter c{&undo};
    c.set(4);
    EXPECT_TRUE(undo.canUndo());
    undo.undo();
    EXPECT_EQ(c.value, 0);
    EXPECT_EQ(undo.redoStepCount(), 1);
}

TEST_F(UndoManagerTest, DisabledRegistrationRecordsNothingAndNests)
{
    Counter c{&undo};
    undo.disableUndoRegistration();
    undo.disableUndoRegistration();
    c.set(1);
    undo.enableUndoRegistration();
    c.set(2);
    EXPECT_FALSE(undo.isUndoRegistrationEnabled());
    undo.enableUndoRegistration();
    RunLoop::main().endPass();
    EXPECT_FALSE(undo.canUndo());
    c.set(3);
    RunLoop::main().endPass();
    undo.undo();
    EXPECT_EQ(c.value, 2);
}

TEST_F(UndoManagerTest, RemovingATargetDropsItsActionsAndEmptySteps)
{
    Counter a{&undo};
    Counter b{&undo};
    a.set(1, "A");
    RunLoop::main().endPass();
    a.set(2, "Both");
    b.set(7, "Both");
    RunLoop::main().endPass();
    undo.removeAllActionsWithTarget(&a);
    EXPECT_EQ(undo.undoStepCount(), 1);
    undo.undo();
    EXPECT_EQ(b.value, 0);
    EXPECT_EQ(a.value, 2);
    EXPECT_FALSE(undo.canUndo());
}

TEST_F(UndoManagerTest, StepWithoutNameHasPlainTitlesAndLastNameWins)
{
    Counter c{&undo};
    undo.registerUndo(&c, [] { });
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo");
    undo.undo();

    c.set(1, "Connect line");
    undo.setActionName("New Line");
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoMenuItemTitle(), "Undo New Line");
}

TEST_F(UndoManagerTest, ExplicitGroupsNestIntoOneStep)
{
    Counter c{&undo};
    undo.setGroupsByEvent(false);
    undo.beginUndoGrouping();
    c.set(1);
    undo.beginUndoGrouping();
    c.set(2);
    undo.endUndoGrouping();
    EXPECT_EQ(undo.groupingLevel(), 1);
    undo.endUndoGrouping();
    EXPECT_EQ(undo.undoStepCount(), 1);
    undo.undo();
    EXPECT_EQ(c.value, 0);
    // The outermost group closing is reported even when nothing changed in it.
    int reports = 0;
    undo.addChangeObserver(&reports, [&reports] { ++reports; });
    undo.beginUndoGrouping();
    undo.beginUndoGrouping();
    undo.endUndoGrouping();
    EXPECT_EQ(reports, 0);
    undo.endUndoGrouping();
    EXPECT_EQ(reports, 1);
    EXPECT_EQ(undo.undoStepCount(), 0);
}

TEST_F(UndoManagerTest, NamedStepsKeepTheirIdentityThroughUndoAndRedo)
{
    Counter c{&undo};
    c.set(1, "Move Line");
    RunLoop::main().endPass();
    undo.registerUndo(&c, [] { }); // a selection change: no name, no edit
    RunLoop::main().endPass();
    c.set(2, "Move Line");
    RunLoop::main().endPass();
    const std::vector<std::uint64_t> saved = undo.namedUndoStepIds();
    ASSERT_EQ(saved.size(), 2u);
    EXPECT_NE(saved[0], saved[1]);

    undo.undo();
    EXPECT_EQ(undo.namedUndoStepIds(), std::vector<std::uint64_t>{saved[0]});
    undo.redo();
    EXPECT_EQ(undo.namedUndoStepIds(), saved);

    undo.undo();
    c.set(3, "Move Line"); // another edit in place of the undone one
    RunLoop::main().endPass();
    EXPECT_NE(undo.namedUndoStepIds(), saved);
    EXPECT_EQ(undo.namedUndoStepIds().size(), 2u);
}

TEST_F(UndoManagerTest, AReopenedStepTakesTheNextChangesUnderANewIdentity)
{
    Counter c{&undo};
    c.set(1);
    RunLoop::main().endPass();
    const std::vector<std::uint64_t> saved = undo.namedUndoStepIds();
    ASSERT_TRUE(undo.reopenLastStep());
    EXPECT_FALSE(undo.reopenLastStep()); // a step is being built
    c.set(2);
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoStepCount(), 1);
    EXPECT_NE(undo.namedUndoStepIds(), saved); // saved at 1, now at 2: edited
    undo.undo();
    EXPECT_EQ(c.value, 0);
    EXPECT_FALSE(undo.reopenLastStep()); // nothing left to reopen
}

TEST_F(UndoManagerTest, ExplicitGroupInsideThePassGroupClosesWithItsOwnPass)
{
    // A gesture opens its group in a pass that has already changed something; the
    // gesture runs over several passes. Its step must close when the gesture's last
    // pass ends, not swallow the changes that come after it.
    Counter c{&undo};
    c.set(1, "Before");
    undo.beginUndoGrouping();
    c.set(2, "Gesture");
    RunLoop::main().endPass();
    c.set(3, "Gesture");
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoStepCount(), 0);
    undo.endUndoGrouping();
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoStepCount(), 1);
    EXPECT_EQ(undo.groupingLevel(), 0);
    c.set(4, "After");
    RunLoop::main().endPass();
    EXPECT_EQ(undo.undoStepCount(), 2);
    undo.undo();
    EXPECT_EQ(c.value, 3);
    undo.undo();
    EXPECT_EQ(c.value, 0);
}

TEST(UndoManagerLifetime, ManagerDestroyedBeforeTheEndOfThePass)
{
    {
        UndoManager undo;
        undo.registerUndo(nullptr, [] { });
    }
    EXPECT_EQ(RunLoop::main().endPass(), 1); // the pending close finds the manager gone
}

} // namespace
} // namespace plyra
