// The shared block of launches: any process of the user can write into it.
#include "check.h"
#include "launchrequest.h"
#include "messagequeue.h"

#include <algorithm>
#include <fuzzer/FuzzedDataProvider.h>
#include <vector>

namespace {

constexpr size_t blockSize = 5000; // bytes, as the player makes it
constexpr int mostSteps = 20;

QString text(FuzzedDataProvider& input)
{
    return QString::fromStdString(input.ConsumeRandomLengthString(300));
}

// What is queued in an empty block comes out as it was, if the queue said that it carries it.
void carry(MessageQueue& queue, FuzzedDataProvider& input)
{
    QStringList words;
    for (int count = input.ConsumeIntegralInRange(0, 4); count > 0; --count) {
        words.append(text(input));
    }
    if (MessageQueue::carries(words)) {
        queue.clear();
        queue.append(MessageQueue::textOf(words));
        const QString message = queue.takeLast();
        check(message == MessageQueue::textOf(words), "a message comes out as it was");
        const QStringList found = MessageQueue::wordsOf(message);
        const bool nothing = words.join(QString()).isEmpty();
        check(nothing ? LaunchRequest::fromMessage(found) == LaunchRequest{} : found == words,
            "the words of a message come out as they were");
    }
}

void take(MessageQueue& queue)
{
    const QString message = queue.takeLast();
    check(message.size() <= 127, "a message is no longer than its length byte can say");
    LaunchRequest::fromMessage(MessageQueue::wordsOf(message));
    check(queue.takeLast().isEmpty(), "the queue is empty after taking from it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const int steps = input.ConsumeIntegralInRange(1, mostSteps);
    // On the heap and of this very size, so that the address sanitizer sees a step outside.
    std::vector<char> block(blockSize);
    MessageQueue queue(block);
    for (int i = 0; i < steps; ++i) {
        switch (input.ConsumeIntegralInRange(0, 4)) {
        case 0:
            queue.append(text(input));
            break;
        case 1:
            take(queue);
            break;
        case 2:
            carry(queue, input);
            break;
        case 3: // a run of records up to the end of the block
            std::fill(block.begin(), block.end(), input.ConsumeIntegral<char>());
            break;
        default: {
            const auto bytes = input.ConsumeRandomLengthString(blockSize);
            const size_t at = input.ConsumeIntegralInRange<size_t>(0, blockSize - bytes.size());
            std::copy(bytes.begin(), bytes.end(), block.begin() + static_cast<ptrdiff_t>(at));
        }
        }
    }
    take(queue);
    return 0;
}
