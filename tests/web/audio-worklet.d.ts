// What the typings of the DOM leave out: the scope of an audio worklet.
declare class AudioWorkletProcessor {
    readonly port: MessagePort;
}

declare function registerProcessor(name: string, processor: new () => AudioWorkletProcessor): void;
