#include "host/rounds/team_crew.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt {
namespace {

// Threads in place of processes.
class Mail {
 public:
  void Put(std::pair<int, int> way, std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    waiting_[way].emplace_back(bytes);
    came_.notify_all();
  }
  std::string Take(std::pair<int, int> way) {
    std::unique_lock lock(mutex_);
    came_.wait(lock, [&] { return !waiting_[way].empty(); });
    std::string bytes = std::move(waiting_[way].front());
    waiting_[way].pop_front();
    return bytes;
  }

 private:
  std::mutex mutex_;
  std::condition_variable came_;
  std::map<std::pair<int, int>, std::deque<std::string>> waiting_;
};

class ThreadTeam : public Team {
 public:
  ThreadTeam(Mail& mail, int rank, int count) : mail_(mail), rank_(rank), count_(count) {}
  int Rank() const override { return rank_; }
  int Count() const override { return count_; }
  void Send(int to, std::string_view bytes) override { mail_.Put({rank_, to}, bytes); }
  std::string Receive(int from) override { return mail_.Take({from, rank_}); }

 private:
  Mail& mail_;
  int rank_;
  int count_;
};

// What each of so many gets, or its fault.
std::vector<std::string> Each(int count, const std::function<std::string(TeamCrew&)>& work) {
  Mail mail;
  std::vector<std::string> got(static_cast<std::size_t>(count));
  std::vector<std::thread> threads;
  for (int rank = 0; rank < count; ++rank) {
    threads.emplace_back([&, rank] {
      ThreadTeam team(mail, rank, count);
      TeamCrew crew(team);
      try {
        got[static_cast<std::size_t>(rank)] = work(crew);
      } catch (const Error& error) {
        got[static_cast<std::size_t>(rank)] = error.what() + (" (" + error.Where() + ")");
        crew.GiveUp(error.what());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  return got;
}

// The parts by their letters, in order: a join that is wrong in any way shows.
Round Letters(std::uint64_t parts, std::atomic<int>* run = nullptr) {
  Round round{"letters", parts, {}, {}, {}};
  round.run = [run](PartRange range) {
    std::string letters;
    for (std::uint64_t part = range.first; part < range.end; ++part) letters += static_cast<char>('a' + part);
    if (run != nullptr) *run += static_cast<int>(range.Count());
    return letters;
  };
  round.join = [](const std::string& first, const std::string& second) { return first + second; };
  round.finish = [](const std::string& all) { return "<" + all + ">"; };
  return round;
}

TEST(TeamCrew, EveryoneGetsThePartsInOrderHoweverManyShareThem) {
  for (const int count : {1, 2, 3, 5, 7, 8}) {
    for (const std::uint64_t parts : {1, 2, 7, 20}) {
      const auto got = Each(count, [&](TeamCrew& crew) {
        std::string all = crew.Run(Letters(parts)) + crew.Run(Letters(parts + 1));
        crew.End();
        return all;
      });
      const std::string letters = "abcdefghijklmnopqrstuvwxyz";
      const std::string whole = "<" + letters.substr(0, parts) + "><" + letters.substr(0, parts + 1) + ">";
      EXPECT_EQ(got, std::vector<std::string>(static_cast<std::size_t>(count), whole))
          << count << ", " << parts;
    }
  }
}

TEST(TeamCrew, AFaultOfOneIsToldToAll) {
  constexpr int kCount = 5;
  struct Case {
    const char* name;
    std::function<std::string(TeamCrew&)> work;
    std::string fault;
  };
  const Case cases[] = {
      {"in a part",
       [](TeamCrew& crew) {
         Round round = Letters(kCount);
         round.run = [](PartRange range) -> std::string {
           if (range.first == 3) throw Error("no room", "disk");
           return "x";
         };
         return crew.Run(round);
       },
       "no room (disk) (rank 3 of 5)"},
      {"between rounds",
       [](TeamCrew& crew) {
         if (crew.Rank() == 3) throw Error("no file");
         return crew.Run(Letters(2));
       },
       "no file (rank 3 of 5)"},
      {"after the last one",
       [](TeamCrew& crew) {
         crew.Run(Letters(2));
         if (crew.Rank() == 3) throw Error("no file");
         crew.End();
         return std::string("done");
       },
       "no file (rank 3 of 5)"},
      {"another job", [](TeamCrew& crew) { return crew.Run(Letters(crew.Rank() == 3 ? 4 : 2)); },
       "works on something else than rank 0: all ranks need the same arguments and the same files (rank 3 of "
       "5)"},
      {"another call",
       [](TeamCrew& crew) {
         crew.RequireSame(crew.Rank() < 3 ? "a" : "b", "differs");
         return std::string();
       },
       "differs (rank 3 of 5)"}};
  for (const Case& c : cases) {
    const auto got = Each(kCount, c.work);
    for (const int rank : {0, 1, 2, 4})
      EXPECT_EQ(got[static_cast<std::size_t>(rank)], c.fault) << c.name << rank;
  }
}

// Stops after so many parts, as if it were killed, as often as it takes.
TEST(TeamCrew, ACheckpointGoesOnWhereItWasKilledWithOtherRanksToo) {
  const TemporaryFolder folder;
  const auto file = folder / "job.checkpoint";
  constexpr std::uint64_t kParts = 12;
  std::atomic<int> all = 0;
  int kills = 0;
  for (std::string result; result.empty(); ++kills) {
    ASSERT_LT(kills, 40);
    const auto got = Each(1 + kills % 3, [&](TeamCrew& crew) {
      crew.KeepCheckpoint(file, std::chrono::milliseconds(0));
      int left = 3;
      std::string told;
      for (const std::uint64_t parts : {kParts, kParts + 2}) {
        Round round = Letters(parts, &all);
        round.run = [&left, run = round.run](PartRange range) {
          if (left-- == 0) throw Error("killed");
          return run(range);
        };
        told += crew.Run(round);
      }
      crew.End();
      return told;
    });
    if (got[0].starts_with("<")) result = got[0];
    EXPECT_EQ(result.empty(), std::filesystem::exists(file)) << got[0];
    if (!result.empty()) {
      EXPECT_EQ(result, "<abcdefghijkl><abcdefghijklmn>");
    }
  }
  EXPECT_GT(kills, 1);
  EXPECT_LT(all, 80) << "what was done is not done again and again";
}

TEST(TeamCrew, ACheckpointThatIsNoneOrOfAnotherJobIsRefused) {
  const TemporaryFolder folder;
  const auto file = folder / "job.checkpoint";
  const auto told = [&](const Round& round, bool ends) {
    return Each(1, [&](TeamCrew& crew) {
      crew.KeepCheckpoint(file, std::chrono::milliseconds(0));
      std::string all = crew.Run(round);
      if (ends) crew.End();
      return all;
    })[0];
  };
  EXPECT_EQ(told(Letters(3), false), "<abc>");
  EXPECT_TRUE(told(Letters(4), false).starts_with("the checkpoint belongs to another job"))
      << told(Letters(4), false);
  EXPECT_EQ(told(Letters(3), false), "<abc>");
  std::string bytes = BytesOf(file);
  bytes[bytes.size() - 3] ^= 1;
  WriteBytes(file, bytes);
  EXPECT_TRUE(told(Letters(3), true).starts_with("the checkpoint is damaged"));
  WriteBytes(file, "x,y\n1,2\n");
  EXPECT_TRUE(told(Letters(3), true).starts_with("the file is no checkpoint"));
}

}  // namespace
}  // namespace brenvolt
