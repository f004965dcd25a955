# SPDX-License-Identifier: MIT
"""The converter refuses what it cannot convert faithfully, and converts the rest: small
TFLite graphs built in memory, one per case."""

import sys
import unittest

import numpy as np

from tflite_reader import Model, Operator, Tensor
from tflite_to_onnx import CONV_2D, DEQUANTIZE, MAX_POOL_2D, PAD, PRELU, RESHAPE, Converter

IMAGE = Tensor("image", (1, 8, 8, 4), np.float32)


def tensor(name, shape, dtype=np.float32, data=None, quantized=False):
    return Tensor(name, shape, dtype, None if data is None else np.asarray(data, dtype).reshape(shape), quantized)


def graph(code, extra, source=IMAGE, output_shape=(1, 8, 8, 4)):
    """One operator on source and the extra tensors, from tensor 0 to the last tensor."""
    tensors = [source, *extra, tensor("out", output_shape)]
    op = Operator(code, list(range(len(tensors) - 1)), [len(tensors) - 1])
    return Model(tensors, [op], [0], [len(tensors) - 1])


def flat(shape):
    """A tensor that is not an image: a reshape of the input comes first."""
    tensors = [IMAGE, tensor("shape", (2,), np.int32, [1, 256]), tensor("flat", shape)]
    return tensors, Operator(RESHAPE, [0, 1], [2])


class ConverterTest(unittest.TestCase):
    def test_refuses_what_it_cannot_convert(self):
        weights = np.ones((4, 3, 3, 4))
        cases = {
            "int8 activations": graph(CONV_2D, [tensor("w", (4, 3, 3, 4), data=weights)],
                                      source=tensor("image", (1, 8, 8, 4), np.int8, quantized=True)),
            "quantised float weights": graph(CONV_2D, [tensor("w", (4, 3, 3, 4), data=weights, quantized=True)]),
            "uint8 weights dequantised": Model(
                [IMAGE, tensor("q", (4,), np.uint8, [1, 2, 3, 4], quantized=True), tensor("slope", (4,)), tensor("out", (1, 8, 8, 4))],
                [Operator(DEQUANTIZE, [1], [2]), Operator(PRELU, [0, 2], [3])], [0], [3]),
            "a PReLU slope per row": graph(PRELU, [tensor("slope", (1, 8, 1), data=np.ones(8))]),
            "a PReLU slope of a single value": graph(PRELU, [tensor("slope", (1,), data=[0.25])]),
            "paddings of three axes": graph(PAD, [tensor("pads", (3, 2), np.int32, np.zeros(6))]),
            "negative paddings": graph(PAD, [tensor("pads", (4, 2), np.int32, [0, 0, -1, 0, 0, 0, 0, 0])]),
        }
        for op, name in ((CONV_2D, "a convolution"), (MAX_POOL_2D, "max pooling"), (PAD, "padding"), (PRELU, "PReLU")):
            tensors, reshape = flat((1, 256))
            extra = {CONV_2D: [tensor("w", (4, 3, 3, 4), data=weights)], PAD: [tensor("pads", (4, 2), np.int32, np.zeros(8))],
                     PRELU: [tensor("slope", (4,), data=np.ones(4))], MAX_POOL_2D: []}[op]
            first = len(tensors)
            tensors += extra + [tensor("out", (1, 256))]
            cases[name + " of data that is not an image"] = Model(
                tensors, [reshape, Operator(op, [2] + list(range(first, first + len(extra))), [len(tensors) - 1])], [0], [len(tensors) - 1])
        for name, model in cases.items():
            with self.subTest(name), self.assertRaises(ValueError):
                Converter(model).convert(name)

    def test_converts_image_operators_on_float_data(self):
        cases = {
            "a convolution": graph(CONV_2D, [tensor("w", (4, 3, 3, 4), data=np.ones((4, 3, 3, 4)))]),
            "PReLU with a [1, 1, C] slope": graph(PRELU, [tensor("slope", (1, 1, 4), data=[0.1, 0.2, 0.3, 0.4])]),
            "padding": graph(PAD, [tensor("pads", (4, 2), np.int32, [0, 0, 1, 1, 1, 1, 0, 0])], output_shape=(1, 10, 10, 4)),
            "float16 weights": Model(
                [IMAGE, tensor("half", (4,), np.float16, [1, 2, 3, 4]), tensor("slope", (4,)), tensor("out", (1, 8, 8, 4))],
                [Operator(DEQUANTIZE, [1], [2]), Operator(PRELU, [0, 2], [3])], [0], [3]),
        }
        for name, model in cases.items():
            with self.subTest(name):
                converted = Converter(model).convert(name)
                self.assertEqual([n.op_type for n in converted.graph.node][-1], "Identity")


if __name__ == "__main__":
    sys.exit(unittest.main())
