// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_dsp/juce_dsp.h>

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace juce
{

/** A named preset: a name and the attributes of a settings document in XML syntax. */
struct Program
{
    String name;
    String fragment;
};

/** A processor that is written one stereo sample at a time.

    A subclass supplies processStereoSample and updateSettings, and processRun if it has a quicker way for many samples.
    It gets input limits, mono and stereo handling, a periodic refresh, optional oversampling, a settings document in
    the host's project, and programs.

    Where things are defined: construction and the block loop in AudioProcessorQuendal.cpp, the oversampler in
    Oversampling.cpp, the settings document in settings/Saving.cpp and settings/Restoring.cpp, programs in
    settings/Programs.cpp.
*/
class AudioProcessorQuendal : public AudioProcessor
{
public:
    /** The most samples that a block is counted as, after oversampling, and the capacity of the reserve buffers. */
    static constexpr int maxBlockSamples = 524288;

    /** The most samples that are processed without a look at requests for updateSettings from other threads. */
    static constexpr int longestRun = 64;

    /** Takes a subclass's buses, as JUCE's own base class does, and leaves JUCE's default pair. */
    explicit AudioProcessorQuendal (const BusesProperties& buses);
    ~AudioProcessorQuendal() override;

    /** Notes the block size and asks for updateSettings. The rate is taken from getSampleRate() when that runs. */
    void prepareToPlay (double rate, int maximumExpectedSamplesPerBlock) override;
    void releaseResources() override {}

    /** Processes the block in place, in runs of at most longestRun samples. Audio thread only; allocates only when the
        oversampler is rebuilt.

        Channels 0 and 1 are processed, others left alone. Before the chain a sample is limited to -30 to 20 on the
        left, -20 to 20 on the right; NaN becomes the lower bound. With fewer than two input channels the left sample
        stands for both.
    */
    void processBlock (AudioBuffer<float>& buffer, MidiBuffer& midi) override;
    using AudioProcessor::processBlock;

    /** How many programs there are, never fewer than one. */
    int getNumPrograms() override;

    /** The index last asked for. */
    int getCurrentProgram() override;

    /** Restores a program's settings, unless a re-initialisation is pending, there is but one program, or the program
        is the one that was restored last. The index is not checked. */
    void setCurrentProgram (int index) override;

    /** The name of a program. The index is not checked. */
    const String getProgramName (int index) override;

    /** Names cannot be changed. */
    void changeProgramName (int index, const String& newName) override;

    /** Replaces destData by a state block: the parameters and the store, and in the store the circumstances of this
        save. Any thread but the audio thread, and never at the same time as setStateInformation. */
    void getStateInformation (MemoryBlock& destData) override;

    /** Takes a state block in: parameters named in it, clamped to 0 to 1, and all its attributes into the store. Data
        that is no state block changes neither. Either way updateSettings runs ahead of the next sample. */
    void setStateInformation (const void* data, int sizeInBytes) override;

    /** Derives all that depends on the sample rate, the oversampling factor and the parameters. Runs on the audio
        thread ahead of a sample: when asked for, and every 65536 processed samples. */
    virtual void updateSettings() = 0;

    /** Processes one sample, left and right, linear with full scale 1.0; on a mono layout the same value twice. It may
        ask for updateSettings, which then runs ahead of the next sample. */
    virtual std::pair<float, float> processStereoSample (std::pair<float, float> input) = 0;

    /** Called once a block, ahead of its samples, with the count after oversampling. */
    virtual void beginBlock (AudioBuffer<float>& buffer, int sampleCount);

    /** Processes a run of samples in place. This one calls processStereoSample for each; another must give the same.

        The block loop has counted the first sample. The run counts the others with countSamples, before they are
        processed. If a sample asks for updateSettings, the run ends with it.

        @param run  1 to longestRun samples
        @returns    how many of them were processed, at least 1
    */
    virtual std::size_t processRun (std::span<std::pair<float, float>> run);

    /** Puts an entry into the store, or replaces it. */
    void setSetting (String key, String value);

    /** Cuts a text at each "/". Separators in a row give empty elements, one at the end gives none. */
    static std::vector<std::string> splitPath (const std::string& text);

    /** The second half of a path of either platform, without its first element: what "daw" holds. */
    static String hostTail (const String& fullPath);

protected:
    /** Asks for updateSettings ahead of the next processed sample. Any thread. */
    void requestUpdate() noexcept
    {
        settingsDue.store (true, std::memory_order_relaxed);
        samplesSinceChange.store (0, std::memory_order_relaxed);
    }

    /** Counts samples that are about to be processed. Audio thread only. */
    void countSamples (int count) noexcept
    {
        // Only this thread counts up, so a load and a store do; a request from another thread may be lost.
        // Without a sign, because the count wraps after half a day without a change.
        const auto samples = static_cast<uint32> (count);
        const auto counted = static_cast<uint32> (samplesSinceChange.load (std::memory_order_relaxed)) + samples;
        samplesSinceChange.store (static_cast<int> (counted), std::memory_order_relaxed);
        refreshCounter = (refreshCounter + samples) & 0xffff;
    }

    /** Appends the program "Default" to an empty list. */
    void ensureDefaultProgram();

    /** Makes the oversampler stand for oversamplingFactor. Does nothing while that has not changed; otherwise it
        allocates, and tells the host a changed latency. */
    void updateOversampler (int numChannels);

    // The rate in force for filter design, in Hz. Not JUCE's: a rate that makes no sense leaves it standing.
    double sampleRate = 96000.0;

    // Counts processed samples modulo 65536; its return to 0 brings a refresh. Nothing resets it.
    uint32 refreshCounter = 0;

    // Set from any thread and read by the audio thread. Relaxed order is enough: the loop needs to see a request at
    // some later sample, and nothing else is handed over with it.
    std::atomic<bool> settingsDue { true };
    std::atomic<int> samplesSinceChange { 0 };

    Random random;
    std::map<String, String> settings; // what the settings document carries beside the parameters
    std::vector<Program> programs;
    int currentProgram = 0;
    int appliedProgram = -1; // so that a first switch to program 0 is no repetition
    MemoryBlock programScratch { 65536 };
    std::unique_ptr<float[]> reserveLeft;
    std::unique_ptr<float[]> reserveRight;
    int oversamplingFactor = 1;
    float builtOversamplingFactor = 1.0f;
    std::unique_ptr<dsp::Oversampling<float>> oversampler;
    std::size_t oversamplerBlockSize = 32768;
    bool stateTouched = true;
    int preparedBlockSize = 8192;

private:
    /** The samples of a block after oversampling, at most maxBlockSamples. */
    int scaledSampleCount (int numSamples) const noexcept;

    /** The raised-rate block that stands for the host's; empty if there is no oversampler or it is not ready. */
    dsp::AudioBlock<float> upsample (const dsp::AudioBlock<float>& hostBlock);
    void downsample (dsp::AudioBlock<float>& hostBlock);

    void processSamples (float* left, float* right, int count);

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (AudioProcessorQuendal)
};

} // namespace juce
