#include "programs/Recording.h"

#include <cstring>
#include <fstream>
#include <stdexcept>

Recording Recording::read(const std::string& path, std::size_t mostSteps)
{
    std::ifstream file(path, std::ios::binary);
    Trace::Header header = {};
    file.read(reinterpret_cast<char*>(&header), sizeof header);
    if (!file || std::memcmp(header.magic, Trace::kMagic, sizeof header.magic) != 0)
        throw std::runtime_error(path + " is no trace");
    header.program[sizeof header.program - 1] = 0;

    Recording result;
    result.program = header.program;
    struct Last
    {
        std::uint32_t turns = 0;
        std::uint16_t thread = 0;
        bool released = false;
    };
    std::vector<Last> blocks;
    Trace::Record record;
    while (result.steps < mostSteps && file.read(reinterpret_cast<char*>(&record), sizeof record)) {
        const bool isNew =
            record.call == Trace::Call::eAlloc || record.call == Trace::Call::eAligned;
        if (isNew ? record.block != blocks.size()
                  : record.block >= blocks.size() || blocks[record.block].released)
            throw std::runtime_error(path + ": a call on block " + std::to_string(record.block) +
                                     ", which there is not");
        if (isNew)
            blocks.push_back({0, record.thread, false});
        Last& last = blocks[record.block];
        result.handedOver += last.thread != record.thread;
        if (record.thread >= result.threads.size())
            result.threads.resize(record.thread + std::size_t(1));
        result.threads[record.thread].push_back({record, last.turns++});
        last.thread = record.thread;
        last.released = record.call == Trace::Call::eRelease;
        ++result.steps;
    }
    result.blocks = blocks.size();
    return result;
}
