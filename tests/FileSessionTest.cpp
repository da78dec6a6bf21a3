#include "host/files/FileSession.h"
#include "host/files/Interrupt.h"
#include "rehearsal/TemporaryFolder.h"
#include "support/Scratch.h"
#include "support/UnwritableFile.h"

#include <gtest/gtest.h>

#include <set>

namespace fs = std::filesystem;

namespace {

using host::FileChange;
using host::FileProblem;
using host::FileSession;
using host::Purpose;
using host::Restored;

using Names = std::set<std::string>;

class FileSessionTest : public testing::Test {
protected:
    FileSessionTest()
    {
        for (const std::string& path :
             {config_.ConfigurationFile, config_.SettingsFile, config_.ApoPipelinesDefinitionFile})
            WriteBytes(path, "old " + path.substr(path.size() - 5));
    }

    [[nodiscard]] std::string Path(const std::string& name) const { return scratch_.Path(name); }
    [[nodiscard]] std::string Bytes(const std::string& name) const { return ReadBytes(Path(name)); }
    [[nodiscard]] Names FilesThere() const
    {
        Names names;
        for (const fs::directory_entry& entry : fs::directory_iterator(scratch_.Folder()))
            names.insert(entry.path().filename().string());
        return names;
    }
    // All three files get new bytes.
    [[nodiscard]] std::vector<FileChange> Changes() const
    {
        return {{Path("a.xml"), "old a.xml", "the new a"},
                {Path("b.xml"), "old b.xml", "b"},
                {Path("c.xml"), "old c.xml", "longer than before: c"}};
    }
    void ExpectOld() const
    {
        EXPECT_EQ(Bytes("a.xml"), "old a.xml");
        EXPECT_EQ(Bytes("b.xml"), "old b.xml");
        EXPECT_EQ(Bytes("c.xml"), "old c.xml");
    }
    void ExpectNew() const
    {
        EXPECT_EQ(Bytes("a.xml"), "the new a");
        EXPECT_EQ(Bytes("b.xml"), "b");
        EXPECT_EQ(Bytes("c.xml"), "longer than before: c");
    }

    // The message of the problem that it meets, without the folder's name; empty if there is none.
    template <class Operation>
    std::string ProblemOf(Operation operation) const
    {
        try {
            operation();
            return {};
        } catch (const FileProblem& problem) {
            return WithoutFolder(problem.what());
        }
    }
    [[nodiscard]] std::string WithoutFolder(std::string text) const
    {
        const std::string folder = Path("");
        for (std::size_t at = 0; (at = text.find(folder)) != std::string::npos;)
            text.erase(at, folder.size());
        return text;
    }

    ScratchFolder scratch_;
    const QovXml::Config config_{Path("a.xml"), Path("b.xml"), Path("c.xml")};
};

TEST_F(FileSessionTest, PutsAllFilesInPlaceAndRestoresThem)
{
    EXPECT_EQ(FileSession(config_, Purpose::Change).PutInPlace(Changes(), ".bak"),
              (std::vector{Path("a.xml.bak"), Path("b.xml.bak"), Path("c.xml.bak")}));
    ExpectNew();
    EXPECT_EQ(Bytes("c.xml.bak"), "old c.xml");

    WriteBytes(Path("b.xml"), "edited since");
    fs::remove(Path("a.xml.bak"));
    const Restored restored = FileSession(config_, Purpose::Change).Restore(".bak");
    ASSERT_EQ(restored.files.size(), 2u);
    EXPECT_EQ(restored.files[0].path, Path("b.xml"));
    EXPECT_EQ(restored.files[0].before, "edited since");
    EXPECT_EQ(restored.files[0].after, "old b.xml");
    EXPECT_TRUE(restored.notRemoved.empty());
    EXPECT_EQ(Bytes("a.xml"), "the new a");
    EXPECT_EQ(Bytes("b.xml"), "old b.xml");
    EXPECT_EQ(Bytes("c.xml"), "old c.xml");
    EXPECT_EQ(FilesThere(), (Names{"a.xml", "b.xml", "c.xml"}));
}

TEST_F(FileSessionTest, LeavesAFileAloneWhoseBytesDoNotChange)
{
    std::vector<FileChange> changes = Changes();
    changes[1].after = changes[1].before;
    const fs::file_time_type longAgo = fs::last_write_time(Path("b.xml")) - std::chrono::hours(1);
    fs::last_write_time(Path("b.xml"), longAgo);
    WriteBytes(Path("b.xml.bak"), "of another day");
    EXPECT_EQ(FileSession(config_, Purpose::Change).PutInPlace(changes, ".bak").size(), 2u);
    EXPECT_EQ(fs::last_write_time(Path("b.xml")), longAgo);
    EXPECT_EQ(Bytes("b.xml.bak"), "of another day");
}

TEST_F(FileSessionTest, ChangesNothingWhereABackupExistsOrAFileHasChanged)
{
    WriteBytes(Path("c.xml.bak"), "of another day");
    FileSession session(config_, Purpose::Change);
    const std::string exists = ProblemOf([&] { session.PutInPlace(Changes(), ".bak"); });
    EXPECT_EQ(exists.find("c.xml.bak: exists already"), 0u) << exists;
    EXPECT_EQ(session.Hindrances(".bak", {Path("c.xml")}).size(), 1u);
    EXPECT_TRUE(session.Hindrances(".bak", {Path("b.xml")}).empty());

    std::vector<FileChange> changes = Changes();
    changes[1].before = "what was read";
    const std::string changed = ProblemOf([&] { session.PutInPlace(changes, ".other"); });
    EXPECT_EQ(changed.find("b.xml: has changed since it was read"), 0u) << changed;
    ExpectOld();
    EXPECT_EQ(FilesThere(), (Names{"a.xml", "b.xml", "c.xml", "c.xml.bak"}));
}

TEST_F(FileSessionTest, PutsEverythingBackWhereOneFileCannotBeReplaced)
{
    FileSession session(config_, Purpose::Change);
    // Nothing can be made under the name that the last file's new bytes need.
    fs::create_directory(Path("c.xml.qovxml-new"));
    const std::string problem = ProblemOf([&] { session.PutInPlace(Changes(), ".bak"); });
    EXPECT_EQ(problem.find("c.xml: cannot be changed"), 0u) << problem;
    ExpectOld();
    EXPECT_EQ(FilesThere(), (Names{"a.xml", "b.xml", "c.xml", "c.xml.qovxml-new"}));
}

TEST_F(FileSessionTest, EveryNameOfAFileShowsItsNewBytes)
{
    fs::create_hard_link(Path("b.xml"), Path("other name.xml"));
    FileSession(config_, Purpose::Change).PutInPlace(Changes(), std::nullopt);
    ExpectNew();
    EXPECT_EQ(Bytes("other name.xml"), "b");
    EXPECT_EQ(FilesThere(), (Names{"a.xml", "b.xml", "c.xml", "other name.xml"}));
}

TEST_F(FileSessionTest, OnlyOneSessionChangesAFileAtATime)
{
    fs::create_hard_link(Path("a.xml"), Path("other name.xml"));
    const QovXml::Config others{Path("other name.xml"), Path("d.xml"), Path("e.xml")};
    const auto open = [&](const QovXml::Config& config) {
        return ProblemOf([&] { const FileSession session(config, Purpose::Change); });
    };
    {
        FileSession first(config_, Purpose::Change);
        EXPECT_EQ(open(others).find("other name.xml: is being changed by another"), 0u);
        first.PutInPlace(Changes(), std::nullopt);
        // What took their place is held too.
        const std::string problem = open(config_);
        for (const char* name : {"a.xml", "b.xml", "c.xml"})
            EXPECT_NE(problem.find(std::string(name) + ": is being changed by another"), std::string::npos) << problem;
        EXPECT_NO_THROW(FileSession(config_, Purpose::Look));
    }
    EXPECT_EQ(open(config_), "");
}

TEST_F(FileSessionTest, TellsEveryProblemOfTheFiles)
{
    WriteBytes(Path("a.xml"), std::string("a NUL byte\0", 11));
    WriteBytes(Path("b.xml"), "\xFF\xFEU");
    fs::remove(Path("c.xml"));
    fs::create_directory(Path("folder"));
    struct {
        QovXml::Config files;
        std::vector<std::string> beginnings;
    } const cases[] = {
        {config_, {"a.xml: holds a NUL byte", "b.xml: is UTF-16 text"}},
        {{Path("none.xml"), Path("folder"), Path("none either.xml")},
         {"none.xml: does not exist", "folder: is no regular file"}},
        {{Path("b.xml"), Path("none.xml"), Path("folder/../b.xml")},
         {"b.xml: is UTF-16 text", "none.xml: does not exist", "folder/../b.xml: is UTF-16 text",
          "folder/../b.xml: is a file that was given twice"}},
    };
    for (const auto& [files, beginnings] : cases) {
        for (const Purpose purpose : {Purpose::Look, Purpose::Change}) {
            const std::vector<std::string> problems = FileSession(files, purpose).Problems();
            ASSERT_EQ(problems.size(), beginnings.size());
            for (std::size_t index = 0; index < problems.size(); ++index)
                EXPECT_EQ(WithoutFolder(problems[index]).find(beginnings[index]), 0u) << problems[index];
        }
    }
}

TEST_F(FileSessionTest, AFileThatCannotBeWrittenHindersOnlyToChange)
{
    const UnwritableFile held(Path("b.xml"));
    EXPECT_TRUE(FileSession(config_, Purpose::Look).Problems().empty());
    EXPECT_EQ(FileSession(config_, Purpose::Look).Hindrances(std::nullopt, {}).size(), 1u);
    const std::vector<std::string> problems = FileSession(config_, Purpose::Change).Problems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(WithoutFolder(problems[0]).find("b.xml: cannot be written"), 0u) << problems[0];
}

TEST_F(FileSessionTest, HealsWhatAKilledRunLeft)
{
    WriteBytes(Path("a.xml"), "half writ");
    WriteBytes(Path("a.xml.qovxml-old"), "old a.xml");
    WriteBytes(Path("b.xml.qovxml-new"), "half");
    WriteBytes(Path("c.xml.qovxml-backup"), "half");
    const Names before = FilesThere();
    EXPECT_EQ(FileSession(config_, Purpose::Look).Notices().size(), 3u);
    EXPECT_EQ(FilesThere(), before);
    EXPECT_EQ(FileSession(config_, Purpose::Change).Notices().size(), 3u);
    ExpectOld();
    EXPECT_EQ(FilesThere(), (Names{"a.xml", "b.xml", "c.xml"}));
    EXPECT_TRUE(FileSession(config_, Purpose::Change).Notices().empty());
}

TEST_F(FileSessionTest, RefusesToRestoreWhatHasNoBackupOrNoOriginal)
{
    const auto restore = [&](const QovXml::Config& files) {
        return ProblemOf([&] { FileSession(files, Purpose::Change).Restore(".bak"); });
    };
    const std::string none = restore(config_);
    EXPECT_EQ(none.find("a.xml: has no backup"), 0u) << none;

    WriteBytes(Path("a.xml.bak"), "a before");
    WriteBytes(Path("c.xml.bak"), "c before");
    const std::string given = restore({Path("a.xml"), Path("b.xml"), Path("a.xml.bak")});
    EXPECT_EQ(given.find("a.xml.bak: is the backup of one of the files and another one of them"), 0u) << given;
    fs::remove(Path("c.xml"));
    const std::string orphan = restore(config_);
    EXPECT_EQ(orphan.find("c.xml.bak: is the backup of a file that does not exist"), 0u) << orphan;
    EXPECT_EQ(Bytes("a.xml"), "old a.xml");
    fs::remove(Path("b.xml"));
    const std::string missing = restore(config_);
    EXPECT_EQ(missing.find("b.xml: does not exist"), 0u) << missing;
    EXPECT_EQ(FilesThere(), (Names{"a.xml", "a.xml.bak", "c.xml.bak"}));
}

TEST(TemporaryFolderTest, RemovesWhatKilledProcessesLeftAndNothingElse)
{
    const rehearsal::TemporaryFolder atWork;
    const fs::path left = atWork.Path().parent_path() / "qovxml-rehearsal-0-0";
    fs::create_directories(left / "inner");
    WriteBytes(left / "configuration.xml", "a copy");
    {
        const rehearsal::TemporaryFolder next;
        EXPECT_TRUE(fs::exists(next.Path()));
        EXPECT_TRUE(fs::exists(atWork.Path()));
        EXPECT_FALSE(fs::exists(left));
    }
    EXPECT_TRUE(fs::exists(atWork.Path()));
}

}  // namespace
