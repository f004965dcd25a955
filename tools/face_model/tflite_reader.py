# SPDX-License-Identifier: MIT
"""Reads the parts of a TFLite model file that a plain feed-forward network uses: its
tensors with their constant data, its operators with their options, and the inputs and
outputs of the first subgraph. Fields are addressed by their slot in the TFLite schema,
so no generated schema code is needed."""

from dataclasses import dataclass, field

import flatbuffers
import numpy as np
from flatbuffers import number_types as nt

TENSOR_TYPES = {0: np.float32, 1: np.float16, 2: np.int32, 3: np.uint8, 4: np.int64, 9: np.int8}


class _Table:
    def __init__(self, buf, pos):
        self._t = flatbuffers.table.Table(buf, pos)

    def _slot(self, index):
        return self._t.Offset(4 + 2 * index)

    def scalar(self, index, flags, default=0):
        off = self._slot(index)
        return self._t.Get(flags, self._t.Pos + off) if off else default

    def table(self, index):
        off = self._slot(index)
        return _Table(self._t.Bytes, self._t.Indirect(self._t.Pos + off)) if off else None

    def string(self, index):
        off = self._slot(index)
        return self._t.String(self._t.Pos + off).decode() if off else ""

    def tables(self, index):
        off = self._slot(index)
        if not off:
            return []
        start = self._t.Vector(off)
        return [_Table(self._t.Bytes, self._t.Indirect(start + 4 * i)) for i in range(self._t.VectorLen(off))]

    def array(self, index, dtype):
        off = self._slot(index)
        if not off:
            return np.zeros(0, dtype)
        start = self._t.Vector(off)
        count = self._t.VectorLen(off)
        return np.frombuffer(self._t.Bytes, dtype, count, start).copy()


@dataclass
class Tensor:
    name: str
    shape: tuple
    dtype: type
    data: np.ndarray = None  # constant tensors only
    quantized: bool = False  # carries a scale and zero point: integers standing for reals


@dataclass
class Operator:
    code: int  # builtin operator code
    inputs: list
    outputs: list
    options: _Table = field(default=None, repr=False)

    def option(self, index, flags=nt.Int32Flags, default=0):
        return self.options.scalar(index, flags, default) if self.options else default


@dataclass
class Model:
    tensors: list
    operators: list
    inputs: list
    outputs: list


def _builtin_code(op_code):
    # Newer files keep codes above 127 in a second field; the first is then a placeholder.
    return max(op_code.scalar(0, nt.Int8Flags), op_code.scalar(3, nt.Int32Flags))


def _tensor(table, buffers):
    dtype = TENSOR_TYPES.get(table.scalar(1, nt.Int8Flags))
    if dtype is None:
        raise ValueError(f"tensor '{table.string(3)}' has a type this reader does not know")
    shape = tuple(int(v) for v in table.array(0, np.int32))
    quantization = table.table(4)
    tensor = Tensor(table.string(3), shape, dtype, quantized=bool(quantization and quantization.array(2, np.float32).size))
    buffer = buffers[table.scalar(2, nt.Uint32Flags)]
    raw = buffer.array(0, np.uint8) if buffer else np.zeros(0, np.uint8)
    if raw.size:
        tensor.data = raw.view(dtype).reshape(shape)
    return tensor


def read_model(data):
    """The first subgraph of a TFLite model given as bytes."""
    buf = bytearray(data)
    if buf[4:8] != b"TFL3":
        raise ValueError("not a TFLite model")
    model = _Table(buf, flatbuffers.encode.Get(nt.UOffsetTFlags.packer_type, buf, 0))
    codes = [_builtin_code(c) for c in model.tables(1)]
    buffers = model.tables(4)
    graph = model.tables(2)[0]
    tensors = [_tensor(t, buffers) for t in graph.tables(0)]
    operators = [Operator(codes[op.scalar(0, nt.Uint32Flags)], list(op.array(1, np.int32)),
                          list(op.array(2, np.int32)), op.table(4)) for op in graph.tables(3)]
    return Model(tensors, operators, list(graph.array(1, np.int32)), list(graph.array(2, np.int32)))
