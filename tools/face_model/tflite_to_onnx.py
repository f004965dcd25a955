# SPDX-License-Identifier: MIT
"""Converts a feed-forward TFLite image network (convolutions, depthwise convolutions,
PReLU, ReLU, additions, max pooling, padding, reshapes, concatenation, with float16
weights) into an ONNX graph in the NCHW layout that OpenCV's dnn module reads.

TFLite works in NHWC. Image tensors become NCHW here: weights are transposed once, and
the graph's input is NCHW. Reshapes and the graph's outputs see the data in TFLite's own
order again (a transpose back to NHWC), so outputs keep TFLite's shapes and values.

Anything else raises ValueError rather than converting into a graph that computes
something else: quantised (int8, uint8) tensors, image operators on data that is not a
four-dimensional image, PReLU slopes that are not one per channel, other paddings."""

import argparse
import sys

import numpy as np
import onnx
from onnx import TensorProto, helper, numpy_helper

from tflite_reader import read_model

ADD, CONCATENATION, CONV_2D, DEPTHWISE_CONV_2D, DEQUANTIZE = 0, 2, 3, 4, 6
MAX_POOL_2D, RELU, RESHAPE, PAD, PRELU = 17, 19, 22, 34, 54
NHWC_TO_NCHW_AXIS = {0: 0, 1: 2, 2: 3, 3: 1}
FLOAT_TYPES = (np.float32, np.float16)
OPSET = 11


def same_padding(size, kernel, stride, dilation=1):
    """TensorFlow's SAME padding of one axis: (before, after)."""
    extent = (kernel - 1) * dilation + 1
    total = max((-(-size // stride) - 1) * stride + extent - size, 0)
    return total // 2, total - total // 2


class Converter:
    def __init__(self, model):
        self.model = model
        self.nodes = []
        self.initializers = []
        self.names = {}  # TFLite tensor index -> ONNX value name
        self.nchw = set()  # TFLite tensor indices held in NCHW order
        self.constants = {}  # folded constants by tensor index

    # ---- values ----
    def constant(self, index):
        if index in self.constants:
            return self.constants[index]
        data = self.model.tensors[index].data
        if data is None:
            raise ValueError(f"tensor '{self.model.tensors[index].name}' is not a constant")
        return data

    def initializer(self, name, array):
        self.initializers.append(numpy_helper.from_array(np.ascontiguousarray(array), name))
        return name

    def value(self, index):
        if index not in self.names:
            tensor = self.model.tensors[index]
            data = self.constant(index).astype(np.float32)
            self.names[index] = self.initializer(f"c{index}_{tensor.name}", data)
        return self.names[index]

    def node(self, op, inputs, output, **attributes):
        self.nodes.append(helper.make_node(op, inputs, [output], name=output, **attributes))
        return output

    def produce(self, op, index, onnx_op, inputs, nchw=True, **attributes):
        name = f"t{index}_{self.model.tensors[index].name}"
        slot = self.activation_slot(op)
        activation = op.option(slot) if slot >= 0 else 0
        if activation:
            self.node(onnx_op, inputs, name + "_linear", **attributes)
            self.activation(activation, name + "_linear", name)
        else:
            self.node(onnx_op, inputs, name, **attributes)
        self.names[index] = name
        if nchw:
            self.nchw.add(index)

    @staticmethod
    def activation_slot(op):
        # Slot of fused_activation_function in each options table.
        return {CONV_2D: 3, DEPTHWISE_CONV_2D: 4, MAX_POOL_2D: 5, ADD: 0, CONCATENATION: 1}.get(op.code, -1)

    def activation(self, kind, source, name):
        if kind == 1:
            return self.node("Relu", [source], name)
        if kind == 3:
            return self.node("Clip", [source, self.initializer(name + "_lo", np.float32(0)),
                                      self.initializer(name + "_hi", np.float32(6))], name)
        raise ValueError(f"fused activation {kind} is not supported")

    def nhwc_view(self, index):
        """The value of tensor index in TFLite's own order."""
        name = self.value(index)
        if index not in self.nchw:
            return name
        return self.node("Transpose", [name], name + "_nhwc", perm=[0, 2, 3, 1])

    def image_input(self, op, what):
        """The NCHW value of the operator's first input, which must be a four-dimensional image."""
        index = op.inputs[0]
        if index not in self.nchw or len(self.model.tensors[index].shape) != 4:
            raise ValueError(f"{what} of '{self.model.tensors[index].name}', which is not an NHWC image")
        return self.value(index)

    def check_types(self, op):
        for index in list(op.inputs) + list(op.outputs):
            tensor = self.model.tensors[index] if index >= 0 else None
            if tensor and (tensor.quantized or tensor.dtype not in FLOAT_TYPES + (np.int32, np.int64)):
                raise ValueError(f"tensor '{tensor.name}' is quantised ({np.dtype(tensor.dtype).name}), which is not supported")

    # ---- operators ----
    def spatial_padding(self, op, kernel_h, kernel_w, dilation_h=1, dilation_w=1):
        if op.option(0, default=0) == 1:  # VALID
            return [0, 0, 0, 0]
        _, h, w, _ = self.model.tensors[op.inputs[0]].shape
        top, bottom = same_padding(h, kernel_h, op.option(2, default=1), dilation_h)
        left, right = same_padding(w, kernel_w, op.option(1, default=1), dilation_w)
        return [top, left, bottom, right]

    def conv(self, op, depthwise):
        weights = self.constant(op.inputs[1]).astype(np.float32)
        stride = [op.option(2, default=1), op.option(1, default=1)]
        dilation_slots = (6, 5) if depthwise else (5, 4)
        dilation = [op.option(dilation_slots[0], default=1), op.option(dilation_slots[1], default=1)]
        _, kh, kw, _ = weights.shape
        if depthwise:  # [1, H, W, C*M] -> [C*M, 1, H, W]
            kernel = weights.transpose(3, 0, 1, 2)
            group = self.model.tensors[op.inputs[0]].shape[3]
        else:  # [O, H, W, I] -> [O, I, H, W]
            kernel = weights.transpose(0, 3, 1, 2)
            group = 1
        out = op.outputs[0]
        inputs = [self.image_input(op, "convolution"), self.initializer(f"k{out}", kernel)]
        if len(op.inputs) > 2 and op.inputs[2] >= 0:
            inputs.append(self.initializer(f"b{out}", self.constant(op.inputs[2]).astype(np.float32)))
        self.produce(op, out, "Conv", inputs, kernel_shape=[kh, kw], strides=stride, dilations=dilation,
                     group=group, pads=self.spatial_padding(op, kh, kw, *dilation))

    def max_pool(self, op):
        kh, kw = op.option(4, default=1), op.option(3, default=1)
        self.produce(op, op.outputs[0], "MaxPool", [self.image_input(op, "max pooling")], kernel_shape=[kh, kw],
                     strides=[op.option(2, default=1), op.option(1, default=1)], pads=self.spatial_padding(op, kh, kw))

    def pad(self, op):
        source = self.image_input(op, "padding")
        paddings = self.constant(op.inputs[1]).astype(np.int64)  # [[before, after]] per NHWC axis
        if paddings.shape != (4, 2) or (paddings < 0).any():
            raise ValueError(f"paddings of shape {paddings.shape} are not [[before, after]] for each of four axes")
        order = [0, 3, 1, 2]
        pads = [paddings[a][0] for a in order] + [paddings[a][1] for a in order]
        out = op.outputs[0]
        self.produce(op, out, "Pad", [source, self.initializer(f"p{out}", np.array(pads, np.int64))])

    def prelu(self, op):
        source = self.image_input(op, "PReLU")
        slope = self.constant(op.inputs[1]).astype(np.float32)
        channels = self.model.tensors[op.inputs[0]].shape[3]
        # One slope per channel, on the last axis; ONNX broadcasts it over C, 1, 1.
        if slope.size != channels or slope.shape[-1] != channels:
            raise ValueError(f"a PReLU slope of shape {slope.shape} is not one per channel of {channels}")
        out = op.outputs[0]
        self.produce(op, out, "PRelu", [source, self.initializer(f"a{out}", slope.reshape(-1, 1, 1))])

    def add(self, op):
        a, b = op.inputs
        if (a in self.nchw) != (b in self.nchw):
            raise ValueError("ADD of tensors in different layouts is not supported")
        self.produce(op, op.outputs[0], "Add", [self.value(a), self.value(b)], nchw=a in self.nchw)

    def reshape(self, op):
        shape = np.array(self.model.tensors[op.outputs[0]].shape, np.int64)
        out = op.outputs[0]
        self.produce(op, out, "Reshape", [self.nhwc_view(op.inputs[0]), self.initializer(f"s{out}", shape)], nchw=False)

    def concatenation(self, op):
        axis = op.option(0)
        rank = len(self.model.tensors[op.outputs[0]].shape)
        axis = axis + rank if axis < 0 else axis
        layouts = {i in self.nchw for i in op.inputs}
        if len(layouts) != 1:
            raise ValueError("CONCATENATION of tensors in different layouts is not supported")
        nchw = layouts.pop()
        self.produce(op, op.outputs[0], "Concat", [self.value(i) for i in op.inputs],
                     nchw=nchw, axis=NHWC_TO_NCHW_AXIS[axis] if nchw else axis)

    def relu(self, op):
        self.produce(op, op.outputs[0], "Relu", [self.value(op.inputs[0])], nchw=op.inputs[0] in self.nchw)

    def dequantize(self, op):
        # Float16 weights widen exactly; integers would need their scale and zero point.
        source = self.constant(op.inputs[0])
        if source.dtype != np.float16:
            raise ValueError(f"DEQUANTIZE of {source.dtype.name} weights is not supported")
        self.constants[op.outputs[0]] = source.astype(np.float32)

    def convert_operator(self, op):
        handlers = {
            CONV_2D: lambda: self.conv(op, depthwise=False),
            DEPTHWISE_CONV_2D: lambda: self.conv(op, depthwise=True),
            MAX_POOL_2D: lambda: self.max_pool(op), PAD: lambda: self.pad(op), PRELU: lambda: self.prelu(op),
            ADD: lambda: self.add(op), RESHAPE: lambda: self.reshape(op),
            CONCATENATION: lambda: self.concatenation(op), RELU: lambda: self.relu(op),
            DEQUANTIZE: lambda: self.dequantize(op),
        }
        if op.code not in handlers:
            raise ValueError(f"TFLite operator {op.code} is not supported")
        self.check_types(op)
        handlers[op.code]()

    # ---- graph ----
    def convert(self, name):
        inputs = []
        for index in self.model.inputs:
            n, h, w, c = self.model.tensors[index].shape
            self.names[index] = self.model.tensors[index].name
            self.nchw.add(index)
            inputs.append(helper.make_tensor_value_info(self.names[index], TensorProto.FLOAT, [n, c, h, w]))
        for op in self.model.operators:
            self.convert_operator(op)
        outputs = []
        for index in self.model.outputs:
            tensor = self.model.tensors[index]
            outputs.append(helper.make_tensor_value_info(self.output(index), TensorProto.FLOAT, list(tensor.shape)))
        graph = helper.make_graph(self.nodes, name, inputs, outputs, self.initializers)
        model = helper.make_model(graph, producer_name="plyra tflite_to_onnx",
                                  opset_imports=[helper.make_operatorsetid("", OPSET)])
        onnx.checker.check_model(model)
        return model

    def output(self, index):
        """Renames the last node of an output to the TFLite tensor's name, in TFLite's order."""
        name = self.model.tensors[index].name
        source = self.nhwc_view(index)
        return self.node("Identity", [source], name)


def convert(tflite_bytes, name):
    """The ONNX model of a TFLite model given as bytes."""
    return Converter(read_model(tflite_bytes)).convert(name)


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("tflite")
    parser.add_argument("onnx")
    args = parser.parse_args(argv)
    with open(args.tflite, "rb") as source:
        onnx.save(convert(source.read(), args.tflite.rsplit("/", 1)[-1]), args.onnx)


if __name__ == "__main__":
    main(sys.argv[1:])
