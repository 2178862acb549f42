"""Which mutants are tried."""
from hashlib import sha256

from rooms import ROOMS
from survivors import key_of


def chosen(mutants, count, seed):
    """`count` numbers in all, as many from each room as from each other as far as a room has them.

    A larger count with the same seed has those of a smaller one and more. A change of the sources changes the choice of
    the mutants that it touches only, as their order is one of hashes.
    """
    by_room = {room.name: [] for room in ROOMS}
    for number in sorted(mutants, key=int):
        by_room[mutants[number]["room"]].append(number)
    for numbers in by_room.values():
        numbers.sort(key=lambda number: sha256(f"{seed} {key_of(mutants[number])}".encode()).digest())
    picked = []
    for turn in range(max(map(len, by_room.values()))):
        for numbers in by_room.values():
            if turn < len(numbers) and len(picked) < count:
                picked.append(numbers[turn])
    return picked
