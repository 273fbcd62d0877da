"""The rules of ztb.cluster under a clock that is played."""

import pytest

from cluster_simulation import Drops, StandsStill, simulate


@pytest.mark.parametrize("losses", [0, 0.01, 0.1, 0.5])
def test_every_chunk_is_taken_once_whatever_is_lost(losses):
    efficiency, taken = simulate(10, losses, seed=7)
    assert sorted(taken) == list(range(400))
    assert 0 < efficiency <= 1


def test_a_result_that_stays_with_a_worker_that_stands_still_is_made_again():
    assert sorted(simulate(10, 0, seed=7, kind=StandsStill)[1]) == list(range(400))


def test_a_chunk_whose_result_is_dropped_is_handed_out_again():
    assert sorted(simulate(10, 0, seed=7, kind=Drops)[1]) == list(range(400))


def test_nothing_is_lost_but_the_end_where_all_goes_well():
    # 40 chunks a worker of one minute, of which one in a hundred takes eight.
    assert simulate(10, 0, seed=7)[0] > 0.8


def test_what_is_lost_costs_about_what_it_took():
    # One chunk in ten is lost half done, and its worker away for half a chunk: about a tenth.
    without, with_losses = simulate(20, 0, seed=3)[0], simulate(20, 0.1, seed=3)[0]
    assert 0.75 * without < with_losses < without
