// SPDX-License-Identifier: MIT
// Records what TFLite's own interpreter computes for a face network on one picture, so
// that the tests can hold the converted ONNX network against it. Run once by hand with
// the WASM build of the interpreter from the npm package @tensorflow/tfjs-tflite
// (0.0.1-alpha.10):
//
//   node record_tflite_reference.js PACKAGE/wasm NETWORK.tflite PICTURE.rgb SCALE OFFSET OUT.f32
//
// PICTURE.rgb holds the picture's 8-bit RGB pixels, rows top first (ImageMagick:
// `convert picture.png rgb:picture.rgb`); each byte b enters the network as
// b * SCALE + OFFSET. OUT.f32 gets every output of the network, in the network's order,
// as little-endian 32-bit floats.
'use strict';
const fs = require('fs');

const [wasmDir, networkPath, picturePath, scale, offset, outPath] = process.argv.slice(2);
const factory = require(`${wasmDir}/tflite_web_api_cc.js`);

factory({wasmBinary: fs.readFileSync(`${wasmDir}/tflite_web_api_cc.wasm`)}).then((tflite) => {
    const network = new Uint8Array(fs.readFileSync(networkPath));
    const address = tflite._malloc(network.length);
    tflite.HEAPU8.set(network, address);
    const created = tflite.TFLiteWebModelRunner.CreateFromBufferAndOptions(address, network.length,
        {numThreads: 1, enableProfiling: false, maxProfilingBufferEntries: 1024});
    if (!created.ok())
        throw new Error(created.errorMessage());
    const runner = created.value();
    const picture = fs.readFileSync(picturePath);
    const input = runner.GetInputs().get(0).data();
    if (input.length !== picture.length)
        throw new Error(`the network takes ${input.length} values, the picture has ${picture.length}`);
    picture.forEach((b, i) => { input[i] = b * Number(scale) + Number(offset); });
    runner.Infer();
    const outputs = runner.GetOutputs();
    const parts = [];
    for (let i = 0; i < outputs.size(); ++i)
        parts.push(Buffer.from(new Float32Array(outputs.get(i).data()).buffer));
    fs.writeFileSync(outPath, Buffer.concat(parts));
});
