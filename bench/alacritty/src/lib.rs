//! Alacritty's terminal, fed as its own event loop feeds it.

use alacritty_terminal::ansi::Processor;
use alacritty_terminal::config::Config;
use alacritty_terminal::event::VoidListener;
use alacritty_terminal::grid::Dimensions;
use alacritty_terminal::term::Term;

const SCROLLBACK_LINES: u32 = 2_000;

struct Size {
    rows: usize,
    columns: usize,
}

impl Dimensions for Size {
    fn total_lines(&self) -> usize {
        self.rows
    }
    fn screen_lines(&self) -> usize {
        self.rows
    }
    fn columns(&self) -> usize {
        self.columns
    }
}

pub struct Peer {
    term: Term<VoidListener>,
    processor: Processor,
}

#[no_mangle]
pub extern "C" fn orvo_alacritty_new(rows: usize, columns: usize) -> *mut Peer {
    let mut config = Config::default();
    config.scrolling.set_history(SCROLLBACK_LINES);
    let term = Term::new(&config, &Size { rows, columns }, VoidListener);
    Box::into_raw(Box::new(Peer { term, processor: Processor::new() }))
}

/// # Safety
/// `peer` comes from `orvo_alacritty_new`, and `bytes` holds `length` bytes.
#[no_mangle]
pub unsafe extern "C" fn orvo_alacritty_feed(peer: *mut Peer, bytes: *const u8, length: usize) {
    let peer = &mut *peer;
    for byte in std::slice::from_raw_parts(bytes, length) {
        peer.processor.advance(&mut peer.term, *byte);
    }
}

/// # Safety
/// `peer` comes from `orvo_alacritty_new` and is not used any more.
#[no_mangle]
pub unsafe extern "C" fn orvo_alacritty_free(peer: *mut Peer) {
    drop(Box::from_raw(peer));
}
