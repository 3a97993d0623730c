// SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
// SPDX-License-Identifier: MIT

#include "shard.h"

#include <algorithm>
#include <deque>
#include <future>
#include <limits>

#include "escape.h"
#include "page_file.h"
#include "pipeline.h"
#include "stop.h"
#include "thread_pool.h"

namespace {

constexpr size_t kPiece = 1 << 18;
constexpr size_t kSmall = 1 << 20;           // up to this size a member that is no page waits in memory for its turn
constexpr size_t kMostWaiting = 16 << 20;    // bytes of these members
constexpr size_t kHeader = 4096;             // what a member without contents counts
constexpr int64_t kLargestPage = std::numeric_limits<int>::max();    // as of a file

// A page of a member, worked on.
struct Page {
    PageResult result;
    ResultFile file;
    std::string sum;
};

// A member that waits for its turn.
struct Member {
    TarEntry entry;
    MemberLine line;
    std::vector<uint8_t> bytes;              // if it is no page
    std::future<std::vector<Page>> pages;    // valid if it is one
};

// The folder of a member with the slash.
std::string folderOf(const std::string& name) { return name.substr(0, name.rfind('/') + 1); }

PageResult failed(const std::string& name, const std::string& fault) {
    PageResult result;
    result.file = name;
    result.status = Status::kFailed;
    result.fault = fault;
    return result;
}

std::vector<Page> straighten(const std::string& name, std::vector<uint8_t> bytes, const Options& options) {
    std::vector<Page> pages;
    processMember(name, std::move(bytes), options, [&](PageResult& result, std::vector<ResultFile> files) {
        Page page{std::move(result), {}, ""};
        if (!files.empty()) page.file = std::move(files.front());
        page.sum = sha256Of(page.file.bytes);
        pages.push_back(std::move(page));
    });
    return pages;
}

void requireRunning() {
    if (stopRequested()) throw std::runtime_error("stopped before the last page");
}

class Shard {
public:
    Shard(TarReader& reader, TarWriter& writer, const ShardOptions& options, PageReport& report,
          const std::function<void(const MemberLine&)>& list)
        : reader_(reader), writer_(writer), options_(options), report_(report), list_(list), pool_(options.jobs) {}

    ShardTotals straightenAll() {
        const auto start = std::chrono::steady_clock::now();
        while (TarEntry entry = reader_.next()) {
            requireRunning();
            take(std::move(entry));
            writeFinished();
        }
        while (!members_.empty()) writeNext();
        requireRunning();    // a member with several pages stops after one of them
        writer_.finish();
        totals_.inputSize = reader_.size();
        totals_.inputSum = reader_.sha256();
        totals_.outputSize = writer_.size();
        totals_.outputSum = writer_.sha256();
        totals_.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        return totals_;
    }

private:
    void take(TarEntry entry) {
        Member member;
        member.entry = std::move(entry);
        member.line.name = nameOf(member.entry.get());
        member.line.inputSize = static_cast<uint64_t>(std::max<la_int64_t>(archive_entry_size(member.entry.get()), 0));
        if (!isFile(member.entry.get())) {
            archive_entry_set_size(member.entry.get(), 0);    // of the file that a hard link leads to
            member.line.inputSize = 0;
            return wait(std::move(member));
        }
        reader_.append(member.bytes, kSignature);
        if (archive_entry_sparse_count(member.entry.get()) > 0) {
            fail(std::move(member), "is sparse");
        } else if (!isNamedLikePage(member.line.name) && !beginsLikePage(member.bytes)) {
            takeOther(std::move(member));
        } else if (archive_entry_size(member.entry.get()) > kLargestPage) {
            fail(std::move(member), "is too large to be a page");
        } else {
            startPage(std::move(member));
        }
    }

    void startPage(Member member) {
        reader_.append(member.bytes, static_cast<size_t>(kLargestPage));
        while (pagesWaiting_ >= 2 * static_cast<size_t>(options_.jobs)) writeNext();
        pool_.waitForFreeThread();
        member.line.inputSum = sha256Of(member.bytes);
        const auto work = std::make_shared<std::packaged_task<std::vector<Page>()>>(
            [name = member.line.name, bytes = std::move(member.bytes), this]() mutable {
                return straighten(name, std::move(bytes), options_.page);
            });
        member.pages = work->get_future();
        pool_.start([work] { (*work)(); });
        wait(std::move(member));
    }

    // A member that is not worked on.
    void fail(Member member, const std::string& fault) {
        std::promise<std::vector<Page>> pages;
        pages.set_value({Page{failed(member.line.name, fault), {}, ""}});
        member.pages = pages.get_future();
        member.bytes.clear();
        wait(std::move(member));
    }

    void takeOther(Member member) {
        if (member.line.inputSize > kSmall) {
            while (!members_.empty()) writeNext();
            return copyOther(member);
        }
        reader_.append(member.bytes, member.line.inputSize - member.bytes.size());
        member.line.inputSum = sha256Of(member.bytes);
        wait(std::move(member));
    }

    void wait(Member member) {
        if (member.pages.valid())
            ++pagesWaiting_;
        else
            bytesWaiting_ += kHeader + member.bytes.size();
        members_.push_back(std::move(member));
        while (bytesWaiting_ > kMostWaiting) writeNext();
    }

    // Without keeping it in memory.
    void copyOther(Member& member) {
        if (!options_.dropOthers) writer_.begin(member.entry.get());
        Sha256 sum;
        for (std::vector<uint8_t>& piece = member.bytes; !piece.empty(); reader_.append(piece, kPiece)) {
            requireRunning();
            sum.add(piece.data(), piece.size());
            if (!options_.dropOthers) writer_.write(piece.data(), piece.size());
            piece.clear();
        }
        member.line.inputSum = sum.digits();
        listOther(member.line);
    }

    void writeFinished() {
        while (!members_.empty() && isFinished(members_.front())) writeNext();
    }

    static bool isFinished(const Member& member) {
        return !member.pages.valid() || member.pages.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }

    void writeNext() {
        Member member = std::move(members_.front());
        members_.pop_front();
        if (!member.pages.valid()) {
            bytesWaiting_ -= kHeader + member.bytes.size();
            return writeOther(member);
        }
        --pagesWaiting_;
        for (Page& page : member.pages.get()) writePage(member, page);
    }

    void writeOther(Member& member) {
        if (!options_.dropOthers) write(member.entry.get(), member.bytes);
        listOther(member.line);
    }

    void listOther(MemberLine& line) {
        line.status = options_.dropOthers ? "dropped" : "passed";
        ++(options_.dropOthers ? totals_.dropped : totals_.passed);
        if (!options_.dropOthers) {
            line.result = line.name;
            line.sum = line.inputSum;
            line.size = line.inputSize;
        }
        list_(line);
    }

    void writePage(const Member& member, Page& page) {
        std::string name = folderOf(member.line.name) + page.file.name;
        if (page.result.status != Status::kFailed && !names_.claim(name))
            page = {failed(page.result.file, nameIsUsed(name)), {}, ""};
        if (page.result.status == Status::kFailed) {
            const std::string text = escaped(page.result.fault) + '\n';
            name = page.result.file + ".error.txt";
            page.file.bytes.assign(text.begin(), text.end());
            page.sum = sha256Of(text);
        }
        write(fileLike(member.entry.get(), name, page.file.bytes.size()).get(), page.file.bytes);
        report_.add(page.result);
        listPage(member, page, name);
    }

    void listPage(const Member& member, const Page& page, const std::string& name) {
        const PageResult& result = page.result;
        MemberLine line = member.line;
        line.name = result.file;
        line.result = name;
        line.status = nameOf(result.status);
        line.sum = page.sum;
        line.size = page.file.bytes.size();
        if (result.skew.known) line.skew = result.skew.angle;
        line.reason = result.fault.empty() ? result.skew.reason : result.fault;
        line.milliseconds = result.milliseconds;
        list_(line);
        switch (result.status) {
            case Status::kDamaged: ++totals_.damaged; break;
            case Status::kFailed: ++totals_.failed; break;
            default: ++totals_.done;
        }
        if (result.status != Status::kFailed && !result.skew.known) ++totals_.withoutSkew;
        if (result.fault == kOutOfMemory) ++totals_.outOfMemory;
    }

    void write(archive_entry* entry, const std::vector<uint8_t>& bytes) {
        writer_.begin(entry);
        if (!bytes.empty()) writer_.write(bytes.data(), bytes.size());
    }

    TarReader& reader_;
    TarWriter& writer_;
    const ShardOptions& options_;
    PageReport& report_;
    const std::function<void(const MemberLine&)>& list_;
    UsedNames names_;
    ShardTotals totals_;
    std::deque<Member> members_;    // in the order of the input
    size_t pagesWaiting_ = 0;
    size_t bytesWaiting_ = 0;    // of members that are no page
    ThreadPool pool_;            // its threads end before anything that they use
};

}    // namespace

ShardTotals straightenShard(TarReader& reader, TarWriter& writer, const ShardOptions& options, PageReport& report,
                            const std::function<void(const MemberLine&)>& list) {
    return Shard(reader, writer, options, report, list).straightenAll();
}
