"""The package on the command line: ``python -m zelk``."""

from __future__ import annotations

import argparse
import os
import sys
from collections.abc import Sequence
from typing import Any

import zelk

from ._decoding import OneDatabase
from ._log import log_paths

_INTERRUPTED = 130  # what shells give for SIGINT


def main(arguments: Sequence[str] | None = None) -> int:
    """Run a command.

    Returns
    -------
    int
        0; 1 for files that are wrong, or findings; 130 after an interruption. A wrong command line ends with 2.
    """
    options = _parser().parse_args(arguments)
    try:
        return int(options.run(options))
    except KeyboardInterrupt:
        print("interrupted", file=sys.stderr)
        return _INTERRUPTED
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())  # for what is flushed at the end
        return 1
    except (zelk.Error, OSError) as error:
        print(f"zelk: {error}", file=sys.stderr)
        return 1
    except ImportError as error:
        print(f"zelk: this needs a further package: {error}", file=sys.stderr)
        return 1


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="python -m zelk", description=zelk.__doc__)
    parser.add_argument("--version", action="version", version=f"zelk {zelk.__version__}")
    commands = parser.add_subparsers(required=True, metavar="COMMAND")
    info = commands.add_parser("info", help="tell what databases and logs hold")
    info.add_argument("files", nargs="+", metavar="DATABASE")
    info.set_defaults(run=_info)
    lint = commands.add_parser("lint", help="check databases: 1 when there are findings")
    lint.add_argument("files", nargs="+", metavar="DATABASE")
    lint.add_argument("--disable", action="append", default=[], metavar="RULE")
    lint.set_defaults(run=_lint)
    diff = commands.add_parser("diff", help="compare two databases: 1 when they differ")
    diff.add_argument("before")
    diff.add_argument("after")
    diff.set_defaults(run=_diff)
    repair = commands.add_parser("repair", help="mend a database that breaks the rules of the format")
    repair.add_argument("source")
    repair.add_argument("target")
    repair.set_defaults(run=_repair)
    _add_decode(commands.add_parser("decode", help="decode logs into files of tables"))
    return parser


def _add_decode(decode: argparse.ArgumentParser) -> None:
    decode.add_argument("logs", nargs="+", metavar="LOG")
    decode.add_argument(
        "-d", "--db", action="append", required=True, metavar="[CHANNEL=]DATABASE", help="describes the frames, of a channel or of all"
    )
    decode.add_argument("-o", "--output", required=True, metavar="FOLDER", help="is made when it is not there")
    decode.add_argument("-f", "--format", choices=["parquet", "csv", "arrows"], default="parquet")
    decode.add_argument("-m", "--message", action="append", metavar="NAME", help="* and ? stand for any characters")
    decode.add_argument("-s", "--signal", action="append", metavar="NAME")
    decode.add_argument("--values", choices=["physical", "raw", "texts"], default="physical")
    decode.add_argument("--start", metavar="TIME", help="seconds, +SECONDS from the first frame, or a date")
    decode.add_argument("--stop", metavar="TIME")
    decode.add_argument("--threads", type=int, default=0, metavar="N")
    decode.add_argument("--relative", action="store_true", help="times count from the first frame")
    decode.add_argument("--j1939-tp", action="store_true", help="put long messages of J1939 together")
    decode.add_argument("--match-pgn", action="store_true", help="match messages by their J1939 parameter group")
    decode.add_argument("--strict", action="store_true", help="a line that is no frame is an error")
    decode.add_argument("--keep", action="store_true", help="keep what can be read of a broken log")
    decode.add_argument("-q", "--quiet", action="store_true", help="no progress and no summary")
    decode.set_defaults(run=_decode)


def _info(options: argparse.Namespace) -> int:
    for path in options.files:
        db = zelk.load(path)
        print(f"{path}: {len(db.messages)} messages, {len(db.nodes)} nodes")
        messages: Any = db.messages
        for message in messages:
            print(f"  {message.frame_id:#x} {message.name}: {message.length} bytes, {len(message.signals)} signals")
    return 0


def _lint(options: argparse.Namespace) -> int:
    findings = [finding for path in options.files for finding in zelk.lint(path, disable=options.disable)]
    return _print_all(findings)


def _diff(options: argparse.Namespace) -> int:
    return _print_all(zelk.diff(options.before, options.after))


def _repair(options: argparse.Namespace) -> int:
    _print_all(zelk.repair(options.source, options.target))
    return 0


def _print_all(things: Sequence[object]) -> int:
    for each in things:
        print(each)
    return 1 if things else 0


def _databases(named: list[str]) -> dict[str | None, list[OneDatabase]]:
    """CHANNEL=FILE, unless there is a file with that whole name."""
    result: dict[str | None, list[OneDatabase]] = {}
    for text in named:
        channel, equals, path = text.partition("=")
        is_path = not equals or os.path.exists(text)
        result.setdefault(None if is_path else channel, []).append(zelk.load(text if is_path else path))
    return result


def _decode(options: argparse.Namespace) -> int:
    keywords = dict(
        db=_databases(options.db),
        messages=options.message,
        signals=options.signal,
        start=options.start,
        stop=options.stop,
        values=options.values,
        threads=options.threads,
        relative=options.relative,
        j1939_tp=options.j1939_tp,
        match_pgn=options.match_pgn,
        strict=options.strict,
        on_error="keep" if options.keep else "raise",
        progress=not options.quiet,
    )
    if options.format == "parquet":
        parts = zelk.to_parquet(options.logs, folder=options.output, **keywords)
        rows = sum(sum(part.rows.values()) for part in parts.values())
        statistics = [part.statistics for part in parts.values()]
    else:
        rows, statistics = _decode_to_files(options, keywords)
    return _summary(rows, statistics, options.quiet)


def _decode_to_files(options: argparse.Namespace, keywords: dict[str, Any]) -> tuple[int, list[zelk.Statistics]]:
    from ._files import flat_files

    with zelk.read_batches(log_paths(options.logs), **keywords) as batches, flat_files(options.output, options.format) as files:
        for table in batches:
            files.write(table)
        files.commit()
        return sum(files.rows.values()), [batches.statistics]


def _summary(rows: int, statistics: list[zelk.Statistics], is_quiet: bool) -> int:
    for each in statistics:
        for line in (*each.malformed_lines, *each.problems):
            print(f"zelk: {line}", file=sys.stderr)
    if not is_quiet:
        frames = sum(each.frames for each in statistics)
        unknown = sum(each.unknown for each in statistics)
        print(f"{frames} frames, {rows} rows, {unknown} frames of unknown identifiers", file=sys.stderr)
    return 1 if any(each.problems for each in statistics) else 0


if __name__ == "__main__":
    sys.exit(main())
