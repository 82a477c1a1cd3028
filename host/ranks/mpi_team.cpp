// The processes that mpirun started, as a team.
#include <mpi.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/base/export.h"
#include "host/rounds/started_team.h"

namespace brenvolt {
namespace {

constexpr int kTag = 0;
// A message is counted by an int.
constexpr std::uint64_t kMostAtOnce = std::uint64_t{1} << 30;

// Faults of MPI end all processes, with a word of its own.
class MpiTeam : public Team {
 public:
  MpiTeam() {
    int provided = 0;
    MPI_Init_thread(nullptr, nullptr, MPI_THREAD_FUNNELED, &provided);
    MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
    MPI_Comm_size(MPI_COMM_WORLD, &count_);
  }
  ~MpiTeam() override { MPI_Finalize(); }
  MpiTeam(const MpiTeam&) = delete;
  MpiTeam& operator=(const MpiTeam&) = delete;

  int Rank() const override { return rank_; }
  int Count() const override { return count_; }

  void Send(int to, std::string_view bytes) override {
    const std::uint64_t size = bytes.size();
    MPI_Send(&size, 1, MPI_UINT64_T, to, kTag, MPI_COMM_WORLD);
    for (; !bytes.empty(); bytes.remove_prefix(AtOnce(bytes.size())))
      MPI_Send(bytes.data(), static_cast<int>(AtOnce(bytes.size())), MPI_BYTE, to, kTag, MPI_COMM_WORLD);
  }

  std::string Receive(int from) override {
    std::uint64_t size = 0;
    MPI_Recv(&size, 1, MPI_UINT64_T, from, kTag, MPI_COMM_WORLD, MPI_STATUS_IGNORE);
    std::string bytes(size, '\0');
    for (std::uint64_t done = 0; done < size; done += AtOnce(size - done)) {
      MPI_Recv(bytes.data() + done, static_cast<int>(AtOnce(size - done)), MPI_BYTE, from, kTag,
               MPI_COMM_WORLD, MPI_STATUS_IGNORE);
    }
    return bytes;
  }

 private:
  static std::uint64_t AtOnce(std::uint64_t size) { return std::min(size, kMostAtOnce); }

  int rank_ = 0;
  int count_ = 1;
};

}  // namespace

extern "C" BRENVOLT_EXPORT Team* BrenvoltStartedTeam() {
  return std::make_unique<MpiTeam>().release();
}

}  // namespace brenvolt
