// Transactions of a page file.
#include "Bytes.h"
#include "Header.h"
#include "PageFile.h"
#include "Sharing.h"
#include "SystemPages.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

// A definition, or rows of the catalog. Whoever adds or removes a row of it writes its definition,
// too.
bool defines(ByteView page) noexcept {
    return u8(page, 0) == 2 || (u8(page, 0) == 1 && u32(page, 4) == kObjectsPage);
}

// Only its two bytes are written: the words beside it belong to others.
void raiseCounter(File& file) {
    std::array<std::byte, 2> word{};
    file.read(kOwnCommitWord, word);
    store(std::span<std::byte>(word), 0, static_cast<std::uint16_t>(u16(word, 0) + 1));
    file.write(kOwnCommitWord, word);
}

}  // namespace

void PageFile::begin() {
    if (access_ != Access::ReadWrite) {
        throw Error(ErrNo::ReadOnly, name_ + ": is open for reading only");
    }
    if (changing_) {
        throw Error(ErrNo::Unexpected, name_ + ": a transaction is open already");
    }
    if (sharing_) {
        sharing_->beginWriting(*file_, readers_ > 0);
    }
    try {
        if (sharing_) {
            Page::Bytes header{};
            file_->read(0, header);
            checkHeader(name_, header);
        }
        broken_.reset();  // it was taken back
        refreshIfChanged();
    } catch (const Error&) {
        if (sharing_) {
            sharing_->endWriting(*file_, readers_ > 0);
        }
        throw;
    }
    changing_ = true;
    failed_ = false;
    written_ = false;
    countBefore_ = pageCount_;
    saved_.assign(sharing_ ? pageCount_ : 0, false);
}

void PageFile::writePage(PageNo number, const Page::Bytes& bytes) {
    if (!changing_ || number == 0 || number >= pageCount_) {
        throw Error(ErrNo::Unexpected, name_ + ": page " + std::to_string(number) +
                                           " is not one that is written in a transaction");
    }
    putChanged(number, std::make_shared<const Page::Bytes>(bytes));
}

PageNo PageFile::appendPage() {
    if (!changing_) {
        throw Error(ErrNo::Unexpected, name_ + ": grows outside a transaction");
    }
    const PageNo number = pageCount_++;
    putChanged(number, std::make_shared<const Page::Bytes>());
    return number;
}

void PageFile::putChanged(PageNo number, std::shared_ptr<const Page::Bytes> bytes) {
    if (defines(*bytes)) {
        ++definitionsStamp_;
    }
    changed_[number] = std::move(bytes);
    if (changed_.size() > mostChanged_) {
        writeChanged();
        changed_.clear();
    }
}

// What the pages held is on the disk before the first of them is written, and stays there until all
// of the change is.
void PageFile::writeChanged() {
    if (failed_) {
        throw Error(ErrNo::Unexpected, name_ + ": a change that failed cannot go on");
    }
    sharing_->keepReadersOut(*file_);
    failed_ = true;  // unless it comes to its end
    Journal& journal = sharing_->journal();
    if (!journal.started()) {
        journal.start(*file_);
    }
    for (const auto& [number, bytes] : changed_) {
        if (number < countBefore_ && !saved_[number]) {
            journal.add(number, *load(number));
            saved_[number] = true;
        }
    }
    journal.flush();
    if (!written_) {
        raiseCounter(*file_);
        written_ = true;
    }
    for (const auto& [number, bytes] : changed_) {
        forget(number);
        file_->write(std::uint64_t{number} * kPageSize, *bytes);
    }
    failed_ = false;
}

void PageFile::writeUnshared() {
    frames_.assign(kFrames, Frame{});
    for (const auto& [number, bytes] : changed_) {
        file_->write(std::uint64_t{number} * kPageSize, *bytes);
    }
    file_->flush();
    raiseCounter(*file_);
}

void PageFile::commit() {
    if (!changed_.empty() || written_) {
        if (sharing_) {
            writeChanged();
            failed_ = true;
            file_->flush();
            sharing_->journal().end();
            failed_ = false;
        } else {
            writeUnshared();
        }
        known_.reset();
    }
    changed_.clear();
    changing_ = false;
    if (digests_) {
        digests_->forget();
    }
    if (sharing_) {
        const ErrScope scope;
        attempt([&] { known_ = look(); });  // what is remembered is as it is in the file
        sharing_->endWriting(*file_, readers_ > 0);
    }
}

void PageFile::replaceBy(const std::string& made) {
    if (!sharing_ || !changing_ || readers_ > 0 || written_ || !changed_.empty()) {
        throw Error(ErrNo::Unexpected, name_ + ": is not replaced by one who reads or has written");
    }
    if (known_ != look()) {
        throw Error(ErrNo::Locked, name_ + ": was written by another program meanwhile");
    }
    changing_ = false;
    if (digests_) {
        digests_->forget();
    }
    const auto goOn = [&] {
        if (file_) {
            sharing_->endWriting(*file_, false);
            refresh();
        }
    };
    try {
        sharing_->replace(file_, made, access_);
    } catch (const Error&) {
        goOn();
        throw;
    }
    goOn();
}

void PageFile::rollback() noexcept {
    if (!changing_) {
        return;
    }
    const ErrScope scope;
    changed_.clear();
    if (digests_) {
        digests_->forget();
    }
    ++definitionsStamp_;
    changing_ = false;
    pageCount_ = countBefore_;
    if (sharing_) {
        if (sharing_->journal().started()) {
            attempt([&] { sharing_->takeBack(*file_); });
            attempt([&] { refresh(); });
        }
        sharing_->endWriting(*file_, readers_ > 0);
    } else {
        known_.reset();  // some of it may have been written
    }
}

}  // namespace vl::jet
