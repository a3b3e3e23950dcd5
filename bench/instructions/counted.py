"""What the counted program and its plugin write, for each preset that was counted."""

import pathlib
import typing

KINDS = ("total", "SIMD", "SIMD memory", "transfer", "core memory")


class Block(typing.NamedTuple):
    """A stretch of instructions without a branch but at its end."""
    address: int
    instructions: int
    executions: int


class Operation(typing.NamedTuple):
    pixels: int
    result: str
    counts: dict  # of instructions, by kind
    blocks: list  # the hottest first


def read(directory, preset):
    """The operations of a preset by name."""
    counts, blocks = [], []
    for line in pathlib.Path(directory, preset + ".counts").read_text().splitlines():
        word, *fields = line.split()
        if word == "count":
            counts.append(dict(zip(KINDS, map(int, fields))))
            blocks.append([])
        else:
            blocks[-1].append(Block(int(fields[0], 16), int(fields[1]), int(fields[2])))
    lines = pathlib.Path(directory, preset + ".operations").read_text().splitlines()
    assert len(lines) == len(counts), f"{preset}: {len(lines)} operations, {len(counts)} counts"
    operations = {}
    for line, *of_operation in zip(lines, counts, blocks):
        name, pixels, result = line.split()
        operations[name] = Operation(int(pixels), result, *of_operation)
    return operations
